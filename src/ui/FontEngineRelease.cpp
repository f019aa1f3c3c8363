// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "FontEngineRelease.h"

// Qt offers no public call for this; the font database uses the same one whenever its
// fonts change.
#include <QtGui/private/qfont_p.h>

namespace stowly {

void releaseFontEngines()
{
    QFontCache::instance()->clear();
}

} // namespace stowly
