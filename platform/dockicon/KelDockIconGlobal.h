#pragma once

#include <QtGlobal>

#if defined(KELDOCKICON_BUILD)
#define KELDOCKICON_EXPORT Q_DECL_EXPORT
#else
#define KELDOCKICON_EXPORT Q_DECL_IMPORT
#endif
