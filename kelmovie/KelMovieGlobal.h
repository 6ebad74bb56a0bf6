#pragma once

#include <QtGlobal>

#if defined(KELMOVIE_BUILD)
#define KELMOVIE_EXPORT Q_DECL_EXPORT
#else
#define KELMOVIE_EXPORT Q_DECL_IMPORT
#endif
