#include "style/SystemTheme.h"

namespace kel
{

void SystemTheme::setWish(Wish wish)
{
    if (wish == m_wish)
        return;
    m_wish = wish;
    emit wishChanged();
}

} // namespace kel
