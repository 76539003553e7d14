/* This is a generated file, edit the .stub.php file instead.
 * Stub hash: 783eca8784c16ce08a9a3275161884a2b9f2a6eb */

ZEND_BEGIN_ARG_INFO_EX(arginfo_class_vt_mrel___construct, 0, 0, 0)
ZEND_END_ARG_INFO()

#define arginfo_class_vt_mrel_getPontaraPath arginfo_class_vt_mrel___construct

#define arginfo_class_vt_mrel_setForceMode arginfo_class_vt_mrel___construct

#define arginfo_class_vt_mrel_getDataDir arginfo_class_vt_mrel___construct

ZEND_BEGIN_ARG_INFO_EX(arginfo_class_vt_mrel_setDataDir, 0, 0, 1)
	ZEND_ARG_INFO(0, dirpath)
ZEND_END_ARG_INFO()

#define arginfo_class_vt_mrel_getLogDir arginfo_class_vt_mrel___construct

#define arginfo_class_vt_mrel_setLogDir arginfo_class_vt_mrel_setDataDir

#define arginfo_class_vt_mrel_getPeriods arginfo_class_vt_mrel___construct

ZEND_BEGIN_ARG_INFO_EX(arginfo_class_vt_mrel_setPeriods, 0, 0, 1)
	ZEND_ARG_INFO(0, periods)
ZEND_END_ARG_INFO()

ZEND_BEGIN_ARG_INFO_EX(arginfo_class_vt_mrel_add_domain, 0, 0, 1)
	ZEND_ARG_INFO(0, domain)
ZEND_END_ARG_INFO()

ZEND_BEGIN_ARG_INFO_EX(arginfo_class_vt_mrel_consolidate, 0, 0, 1)
	ZEND_ARG_INFO(0, lastConsolidFile)
ZEND_END_ARG_INFO()

ZEND_BEGIN_ARG_INFO_EX(arginfo_class_vt_mrel_msgs_per_day, 0, 0, 4)
	ZEND_ARG_INFO(0, start)
	ZEND_ARG_INFO(0, end)
	ZEND_ARG_INFO(0, users)
	ZEND_ARG_INFO(0, handle)
ZEND_END_ARG_INFO()

ZEND_BEGIN_ARG_INFO_EX(arginfo_class_vt_mrel_user_msgs, 0, 0, 8)
	ZEND_ARG_INFO(0, destinatarios)
	ZEND_ARG_INFO(0, remetentes)
	ZEND_ARG_INFO(0, start)
	ZEND_ARG_INFO(0, end)
	ZEND_ARG_INFO(0, msg_id)
	ZEND_ARG_INFO(0, min_kb)
	ZEND_ARG_INFO(0, max_kb)
	ZEND_ARG_INFO(0, handle)
ZEND_END_ARG_INFO()

ZEND_BEGIN_ARG_INFO_EX(arginfo_class_vt_mrel_msgs_per_hour, 0, 0, 4)
	ZEND_ARG_INFO(0, start)
	ZEND_ARG_INFO(0, end)
	ZEND_ARG_INFO(0, user)
	ZEND_ARG_INFO(0, handle)
ZEND_END_ARG_INFO()

ZEND_BEGIN_ARG_INFO_EX(arginfo_class_vt_mrel_msg_trace, 0, 0, 4)
	ZEND_ARG_INFO(0, msg_id)
	ZEND_ARG_INFO(0, start)
	ZEND_ARG_INFO(0, end)
	ZEND_ARG_INFO(0, handle)
ZEND_END_ARG_INFO()


ZEND_METHOD(vt_mrel, __construct);
ZEND_METHOD(vt_mrel, getPontaraPath);
ZEND_METHOD(vt_mrel, setForceMode);
ZEND_METHOD(vt_mrel, getDataDir);
ZEND_METHOD(vt_mrel, setDataDir);
ZEND_METHOD(vt_mrel, getLogDir);
ZEND_METHOD(vt_mrel, setLogDir);
ZEND_METHOD(vt_mrel, getPeriods);
ZEND_METHOD(vt_mrel, setPeriods);
ZEND_METHOD(vt_mrel, add_domain);
ZEND_METHOD(vt_mrel, consolidate);
ZEND_METHOD(vt_mrel, msgs_per_day);
ZEND_METHOD(vt_mrel, user_msgs);
ZEND_METHOD(vt_mrel, msgs_per_hour);
ZEND_METHOD(vt_mrel, msg_trace);


static const zend_function_entry class_vt_mrel_methods[] = {
	ZEND_ME(vt_mrel, __construct, arginfo_class_vt_mrel___construct, ZEND_ACC_PUBLIC)
	ZEND_ME(vt_mrel, getPontaraPath, arginfo_class_vt_mrel_getPontaraPath, ZEND_ACC_PUBLIC)
	ZEND_ME(vt_mrel, setForceMode, arginfo_class_vt_mrel_setForceMode, ZEND_ACC_PUBLIC)
	ZEND_ME(vt_mrel, getDataDir, arginfo_class_vt_mrel_getDataDir, ZEND_ACC_PUBLIC)
	ZEND_ME(vt_mrel, setDataDir, arginfo_class_vt_mrel_setDataDir, ZEND_ACC_PUBLIC)
	ZEND_ME(vt_mrel, getLogDir, arginfo_class_vt_mrel_getLogDir, ZEND_ACC_PUBLIC)
	ZEND_ME(vt_mrel, setLogDir, arginfo_class_vt_mrel_setLogDir, ZEND_ACC_PUBLIC)
	ZEND_ME(vt_mrel, getPeriods, arginfo_class_vt_mrel_getPeriods, ZEND_ACC_PUBLIC)
	ZEND_ME(vt_mrel, setPeriods, arginfo_class_vt_mrel_setPeriods, ZEND_ACC_PUBLIC)
	ZEND_ME(vt_mrel, add_domain, arginfo_class_vt_mrel_add_domain, ZEND_ACC_PUBLIC)
	ZEND_ME(vt_mrel, consolidate, arginfo_class_vt_mrel_consolidate, ZEND_ACC_PUBLIC)
	ZEND_ME(vt_mrel, msgs_per_day, arginfo_class_vt_mrel_msgs_per_day, ZEND_ACC_PUBLIC)
	ZEND_ME(vt_mrel, user_msgs, arginfo_class_vt_mrel_user_msgs, ZEND_ACC_PUBLIC)
	ZEND_ME(vt_mrel, msgs_per_hour, arginfo_class_vt_mrel_msgs_per_hour, ZEND_ACC_PUBLIC)
	ZEND_ME(vt_mrel, msg_trace, arginfo_class_vt_mrel_msg_trace, ZEND_ACC_PUBLIC)
	ZEND_FE_END
};

static zend_class_entry *register_class_vt_mrel(void)
{
	zend_class_entry ce, *class_entry;

	INIT_CLASS_ENTRY(ce, "vt_mrel", class_vt_mrel_methods);
	class_entry = zend_register_internal_class_ex(&ce, NULL);
	class_entry->ce_flags |= ZEND_ACC_FINAL|ZEND_ACC_NOT_SERIALIZABLE|ZEND_ACC_ALLOW_DYNAMIC_PROPERTIES;

	zend_string *attribute_name_AllowDynamicProperties_class_vt_mrel = zend_string_init_interned("AllowDynamicProperties", sizeof("AllowDynamicProperties") - 1, 1);
	zend_add_class_attribute(class_entry, attribute_name_AllowDynamicProperties_class_vt_mrel, 0);
	zend_string_release(attribute_name_AllowDynamicProperties_class_vt_mrel);

	return class_entry;
}
