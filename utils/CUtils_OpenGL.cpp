// SPDX-License-Identifier: Apache-2.0
#include <QGLFormat>
#include <QGuiApplication>
#include <QOffscreenSurface>
#include <QOpenGLContext>

#include "utils/CUtils.h"

namespace {

// QGLFormat::openGLVersionFlags() dereferences a null context where none can be made current.
bool CanMakeContextCurrent() {
  if (QOpenGLContext::currentContext()) return true;
  QOpenGLContext context;
  if (!context.create()) return false;
  QOffscreenSurface surface;
  surface.setFormat(context.format());
  surface.create();
  return surface.isValid() && context.makeCurrent(&surface);
}

}  // namespace

bool CUtils::CheckOpenGLSupport() {
  if (!qobject_cast<QGuiApplication*>(QCoreApplication::instance())) return false;
  // A context costs tens of milliseconds. Qt keeps the flags for the life of the process, too.
  static const bool canAsk = CanMakeContextCurrent();
  return canAsk && IsOpenGLSufficient(static_cast<int>(QGLFormat::openGLVersionFlags()));
}

bool CUtils::IsOpenGLSufficient(int versionFlags) {
  return versionFlags >= 32 && (versionFlags <= 64 || versionFlags >= 2048);
}
