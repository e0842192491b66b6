#pragma once

#include <QtGlobal>

/// Marks what the shared library `vexelplatform` offers to the host and the plug-ins.
#if defined(VEXELPLATFORM_LIBRARY)
#define VEXELPLATFORM_EXPORT Q_DECL_EXPORT
#else
#define VEXELPLATFORM_EXPORT Q_DECL_IMPORT
#endif
