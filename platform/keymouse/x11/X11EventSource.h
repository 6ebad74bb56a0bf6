#pragma once

#include "keymouse/unix/NativeEventSource.h"
#include "keymouse/x11/X11InputRecorder.h"

#include <memory>

namespace kel
{

class X11InputMapper;

/// Input of the X display.
class X11EventSource final : public NativeEventSource
{
public:
    X11EventSource();
    ~X11EventSource() override;

    bool open() override;
    bool watch(int kinds) override;
    bool deliverUntil(int wakeDescriptor, KeyMouseEventSink &sink) override;
    void interrupt() override;
    QString errorString() const override;

private:
    X11InputRecorder m_recorder;
    std::unique_ptr<X11InputMapper> m_mapper;
};

} // namespace kel
