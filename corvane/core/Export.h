#pragma once

#include <QtGlobal>

/// Marks what the shared library exports; everything else stays hidden.
#if defined(CORVANE_BUILD)
#define CORVANE_EXPORT Q_DECL_EXPORT
#else
#define CORVANE_EXPORT Q_DECL_IMPORT
#endif
