#pragma once

#include "keymouse/evdev/InputDevices.h"

namespace kel
{

/// The devices in /dev/input, which the members of the group "input" can read.
class SystemInputDevices final : public InputDevices
{
public:
    SystemInputDevices();

    std::vector<InputDevice> open(int kinds, const QStringList &except) override;
    int changes() const override { return m_changes.get(); }
    void forgetChanges() override;
    QString errorString() const override { return m_error; }

private:
    OwnDescriptor m_changes;
    QString m_error;
};

} // namespace kel
