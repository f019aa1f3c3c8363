// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

// The preference file's format: the INI text QSettings writes, read and written by us so that
// a value is only ever text. Qt's own INI reader turns "@Variant(...)" into a QDataStream read,
// and a few bytes there can ask it for gigabytes (a list count is reserved before any element
// is read). Here such a value stays the text it is: readers see no preference in it, and a
// write puts it back exactly as it was.

#include <QSettings>

namespace stowly::linuxdesktop {

// QSettings::IniFormat's file layout, with every value read as text. A value in one of
// QSettings' "@Type(...)" forms reads as neither text nor list, so readers take their default.
QSettings::Format preferenceFileFormat();

} // namespace stowly::linuxdesktop
