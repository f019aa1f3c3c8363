// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/PreferenceStore.h"

#include <QObject>

namespace stowly {

// The one in-process preference store: forwards to the platform's store and tells every
// view when "defaultAction" or "enabledActions" is written, so that the panel redraws at
// once when the settings window changes them. Every writer in the program goes through it.
class NotifyingPreferenceStore : public QObject, public PreferenceStore {
    Q_OBJECT

public:
    explicit NotifyingPreferenceStore(PreferenceStore& backing, QObject* parent = nullptr);

    std::optional<std::string> string(const std::string& key) const override;
    void setString(const std::string& key, const std::string& value) override;

signals:
    // Emitted after every write, also of an unchanged value.
    void valueChanged(const QString& key);
    void defaultActionChanged();
    void enabledActionsChanged();

private:
    PreferenceStore& m_backing;
};

} // namespace stowly
