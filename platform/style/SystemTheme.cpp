#include "style/SystemTheme.h"

namespace kel
{

void SystemTheme::setColorScheme(ColorScheme scheme)
{
    if (scheme == m_colorScheme)
        return;
    m_colorScheme = scheme;
    emit colorSchemeChanged();
}

} // namespace kel
