#include "keymouse/KelKeyMouseHook.h"

#include "keymouse/KeyMouseHub.h"

using namespace kel;

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
