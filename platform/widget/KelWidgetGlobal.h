#pragma once

#include <QtGlobal>

#if defined(KELWIDGET_BUILD)
#define KELWIDGET_EXPORT Q_DECL_EXPORT
#else
#define KELWIDGET_EXPORT Q_DECL_IMPORT
#endif
