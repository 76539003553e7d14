/* This is a generated file, edit the .stub.php file instead.
 * Stub hash: f06f87c0518d1889e850fab511660cbd2ef9c2ba */

ZEND_BEGIN_ARG_INFO_EX(arginfo_class_vt_mrel_itr___construct, 0, 0, 0)
ZEND_END_ARG_INFO()

#define arginfo_class_vt_mrel_itr_getHandle arginfo_class_vt_mrel_itr___construct

#define arginfo_class_vt_mrel_itr_fetch arginfo_class_vt_mrel_itr___construct

#define arginfo_class_vt_mrel_itr_fetch_recipient arginfo_class_vt_mrel_itr___construct

#define arginfo_class_vt_mrel_itr_fetch_msgs_per_day arginfo_class_vt_mrel_itr___construct


ZEND_METHOD(vt_mrel_itr, __construct);
ZEND_METHOD(vt_mrel_itr, getHandle);
ZEND_METHOD(vt_mrel_itr, fetch);
ZEND_METHOD(vt_mrel_itr, fetch_recipient);
ZEND_METHOD(vt_mrel_itr, fetch_msgs_per_day);


static const zend_function_entry class_vt_mrel_itr_methods[] = {
	ZEND_ME(vt_mrel_itr, __construct, arginfo_class_vt_mrel_itr___construct, ZEND_ACC_PUBLIC)
	ZEND_ME(vt_mrel_itr, getHandle, arginfo_class_vt_mrel_itr_getHandle, ZEND_ACC_PUBLIC)
	ZEND_ME(vt_mrel_itr, fetch, arginfo_class_vt_mrel_itr_fetch, ZEND_ACC_PUBLIC)
	ZEND_ME(vt_mrel_itr, fetch_recipient, arginfo_class_vt_mrel_itr_fetch_recipient, ZEND_ACC_PUBLIC)
	ZEND_ME(vt_mrel_itr, fetch_msgs_per_day, arginfo_class_vt_mrel_itr_fetch_msgs_per_day, ZEND_ACC_PUBLIC)
	ZEND_FE_END
};

static zend_class_entry *register_class_vt_mrel_itr(void)
{
	zend_class_entry ce, *class_entry;

	INIT_CLASS_ENTRY(ce, "vt_mrel_itr", class_vt_mrel_itr_methods);
	class_entry = zend_register_internal_class_ex(&ce, NULL);
	class_entry->ce_flags |= ZEND_ACC_FINAL|ZEND_ACC_NOT_SERIALIZABLE|ZEND_ACC_ALLOW_DYNAMIC_PROPERTIES;

	zend_string *attribute_name_AllowDynamicProperties_class_vt_mrel_itr = zend_string_init_interned("AllowDynamicProperties", sizeof("AllowDynamicProperties") - 1, 1);
	zend_add_class_attribute(class_entry, attribute_name_AllowDynamicProperties_class_vt_mrel_itr, 0);
	zend_string_release(attribute_name_AllowDynamicProperties_class_vt_mrel_itr);

	return class_entry;
}
