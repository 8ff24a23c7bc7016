#include "services/TerminalDocument.h"

#include <ostream>

#include "services/DocumentFileReader.h"

namespace quillon::services {

TerminalDocument::TerminalDocument(target::Target& target, std::uint32_t dataRegister)
    : Document("", Kind::Terminal, target), m_capture(dataRegister)
{
}

void TerminalDocument::write(std::ostream& out) const
{
    out << m_capture.text();
}

void TerminalDocument::read(DocumentFileReader& in)
{
    in.fail("the terminal has no saved form to read");
}

} // namespace quillon::services
