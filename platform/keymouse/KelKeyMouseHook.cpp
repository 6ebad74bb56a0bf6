#include "keymouse/KelKeyMouseHook.h"

#include "keymouse/KeyMouseHub.h"

#include <atomic>

using namespace kel;

namespace
{

std::atomic<bool> mayReadInputDevices{false};

} // namespace

KelKeyMouseHook::KelKeyMouseHook()
{
    KeyMouseHub::instance().watchScreens();
}

KelKeyMouseHook::~KelKeyMouseHook()
{
    setHookType(NoKind);
}

void KelKeyMouseHook::setHookType(int type)
{
    KeyMouseHub::instance().setHookKinds(this, type);
}

QString KelKeyMouseHook::errorString()
{
    return KeyMouseHub::instance().errorString();
}

void KelKeyMouseHook::setReadsInputDevices(bool isAllowed)
{
    mayReadInputDevices = isAllowed;
}

bool KelKeyMouseHook::readsInputDevices()
{
    return mayReadInputDevices;
}

bool KelKeyMouseHook::OnKeyboardEvent(KelKeyboardEvent)
{
    return false;
}

bool KelKeyMouseHook::OnMouseEvent(KelMouseEvent)
{
    return false;
}

bool KelKeyMouseHook::OnMouseWheelEvent(KelWheelEvent)
{
    return false;
}
