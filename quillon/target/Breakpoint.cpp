#include "target/Breakpoint.h"

namespace quillon::target {

bool Breakpoint::pass()
{
    if (!m_options.enabled || (m_options.condition && !m_options.condition())) {
        return false;
    }
    ++m_hits;
    return m_options.hitCount <= 1 || m_hits % m_options.hitCount == 0;
}

} // namespace quillon::target
