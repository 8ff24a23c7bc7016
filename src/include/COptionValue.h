#pragma once

#include <string>
#include <vector>

#include "OrbelTypes.h"
#include "SOptionValue.h"

namespace kestrix {

/// An `SOptionValue` with the text it points at and the buffer it is answered in, both owned.
class COptionValue {
public:
    /// All fields zero but the size.
    COptionValue();
    explicit COptionValue(const std::string& value);
    explicit COptionValue(DWORD value);
    explicit COptionValue(double value);

    COptionValue(const COptionValue&) = delete;
    COptionValue& operator=(const COptionValue&) = delete;

    /// 0 stands for the default of each separator.
    void setSeparators(char pathSeparator = 0, char valueSeparator = 0, char optionSeparator = 0);
    /// A zeroed output buffer of `size` bytes, replacing an earlier one.
    void allocOutputBuffer(DWORD size);
    /// The output text up to its first zero byte; empty without a buffer.
    std::string getOutputBuffer() const;
    SOptionValue* getOptionValue() { return &m_value; }

private:
    SOptionValue m_value;
    std::string m_input;
    std::vector<char> m_output;
};

} // namespace kestrix
