#pragma once

#include <QtGlobal>

#if defined(KELSTYLE_BUILD)
#define KELSTYLE_EXPORT Q_DECL_EXPORT
#else
#define KELSTYLE_EXPORT Q_DECL_IMPORT
#endif
