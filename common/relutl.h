// The single-instance lock around consolidation.
#pragma once

// True when this process holds, or now gets, the lock file "/tmp/vtmrel.lck"; false, at once, when
// another process holds it or it cannot be opened. The lock stays until the process ends; threads
// of one process do not exclude each other.
bool testaSeUnico();
