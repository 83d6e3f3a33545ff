#pragma once

#include <QString>

// The reason a file operation failed, in German, from the system's error number. Qt's own texts
// are the C library's, in English or in whatever language the system speaks, and name the
// system call rather than what to do about it.
QString germanFileError(int systemError);
