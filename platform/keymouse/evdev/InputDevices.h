#pragma once

#include <QString>
#include <QStringList>

#include <memory>
#include <utility>
#include <vector>

namespace kel
{

/// Closes the descriptor that it owns.
class OwnDescriptor
{
public:
    explicit OwnDescriptor(int descriptor = -1)
        : m_descriptor(descriptor)
    {
    }
    OwnDescriptor(OwnDescriptor &&other) noexcept
        : m_descriptor(std::exchange(other.m_descriptor, -1))
    {
    }
    OwnDescriptor &operator=(OwnDescriptor &&other) noexcept
    {
        std::swap(m_descriptor, other.m_descriptor);
        return *this;
    }
    ~OwnDescriptor();

    int get() const { return m_descriptor; }

private:
    int m_descriptor;
};

/// An open keyboard or mouse, which delivers struct input_event without blocking.
struct InputDevice {
    QString name;
    int offered = 0; ///< what it can deliver, bits of KelKeyMouseHook::Kind
    int opened = 0;  ///< what it was opened for
    OwnDescriptor descriptor;
};

/// The keyboards and mice of this computer, found by the operating system or provided by a test.
class InputDevices
{
public:
    virtual ~InputDevices() = default;

    /// Opens all devices that offer some of `kinds`, except for those with these names. They deliver nothing else.
    virtual std::vector<InputDevice> open(int kinds, const QStringList &except) = 0;

    /// Readable when there may be new devices; -1 if this is never noticed.
    virtual int changes() const = 0;

    /// Makes changes() unreadable until the next change.
    virtual void forgetChanges() = 0;

    /// Why open() has found nothing, in English; empty when it has.
    virtual QString errorString() const = 0;
};

} // namespace kel
