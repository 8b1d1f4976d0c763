// SPDX-License-Identifier: Apache-2.0
#include <QGLFormat>
#include <QGuiApplication>
#include <QOffscreenSurface>
#include <QOpenGLContext>

#include "utils/CUtils.h"

namespace {

// Asking for the version flags dereferences a null context where none can be made current.
bool CanMakeContextCurrent() {
  if (!qobject_cast<QGuiApplication*>(QCoreApplication::instance())) return false;
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
  // Qt keeps the flags for the life of the process once it has read them, so the costly question is asked until then.
  static bool flagsAreKnown = false;
  flagsAreKnown = flagsAreKnown || CanMakeContextCurrent();
  return flagsAreKnown && IsOpenGLSufficient(static_cast<int>(QGLFormat::openGLVersionFlags()));
}

bool CUtils::IsOpenGLSufficient(int versionFlags) {
  return versionFlags >= 32 && (versionFlags <= 64 || versionFlags >= 2048);
}
