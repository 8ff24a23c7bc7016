#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "services/Program.h"
#include "services/SpanSet.h"
#include "services/ThumbDecoder.h"

namespace quillon::services {

/// The code of the downloaded programs as coverage sees it: the executable sections, and in them the Thumb
/// instructions, found by the ARM mapping symbols ($t starts code, $d data such as literal pools), so that
/// constants between functions are not counted as code. A section without mapping symbols is all code.
class CodeMap {
public:
    CodeMap() = default;
    /// Reads and decodes the programs' executable sections. Throws AnalyzerError (Failed) for an ELF that libelf
    /// cannot read.
    static CodeMap of(const std::vector<Program>& programs, const ThumbDecoder& decoder);

    /// The executable sections: the downloaded code.
    const SpanSet& sections() const { return m_sections; }
    /// The instructions, by address.
    const std::vector<ThumbInstruction>& instructions() const { return m_instructions; }
    /// The instructions that lie in [begin, end), by address.
    std::vector<ThumbInstruction> instructionsIn(std::uint64_t begin, std::uint64_t end) const;

private:
    void addProgram(const Program& program, const ThumbDecoder& decoder);

    SpanSet m_sections;
    std::vector<ThumbInstruction> m_instructions;
};

} // namespace quillon::services
