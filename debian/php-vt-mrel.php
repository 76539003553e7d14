mod modules/vt_mrel.so
mod debian/vt_mrel.ini
