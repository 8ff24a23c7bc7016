#include "IException.h"

#include <cstdio>
#include <cstring>

namespace kestrix {

const char* const IException::INDENT = "  ";

namespace {

// The file name starts at the last path separator, or is the whole path if it has none.
const char* fileFrom(const char* path)
{
    if (path == nullptr) {
        return "";
    }
    const char* sep = std::strrchr(path, '/');
    return sep != nullptr ? sep : path;
}

} // namespace

std::string IException::intToString(int value)
{
    char buffer[34];
    int n = std::snprintf(buffer, sizeof(buffer), "%d", value);
    if (n < 0 || static_cast<size_t>(n) >= sizeof(buffer)) {
        return "Error in IException - can not convert int to string!";
    }
    return buffer;
}

IException::IException(const char* file, int line, const std::string& desc) : m_desc(desc)
{
    init(file, line);
}

IException::IException(const char* file, int line, const std::string& desc, int number)
    : m_desc(desc + intToString(number))
{
    init(file, line);
}

IException::IException(const char* file, int line, const std::string& desc, const std::string& desc2)
    : m_desc(desc + desc2)
{
    init(file, line);
}

IException::IException(const char* file, int line, const std::string& desc, int number1, int number2)
    : m_desc(desc + intToString(number1) + "/" + intToString(number2))
{
    init(file, line);
}

IException::IException(const char* file, int line, const std::string& desc, const IException& cause)
    : m_desc(desc), m_cause(cause.toString())
{
    init(file, line);
}

IException::IException(const IException& other) : std::exception(other)
{
    assign(other);
}

IException& IException::operator=(const IException& other)
{
    if (this != &other) {
        assign(other);
    }
    return *this;
}

IException::~IException() = default;

void IException::init(const char* file, int line)
{
    m_file = fileFrom(file);
    m_line = line;
    buildMessage();
}

void IException::buildMessage()
{
    m_message = m_desc + "  [" + m_file + ", " + intToString(m_line) + "]";
}

const char* IException::what() const noexcept
{
    return m_message.c_str();
}

void IException::assign(const IException& other)
{
    m_message = other.m_message;
    m_desc = other.m_desc;
    m_data = other.m_data;
    m_cause = other.m_cause;
    m_file = other.m_file;
    m_line = other.m_line;
}

const std::string& IException::getDesc() const
{
    return m_desc;
}

const std::string& IException::getData() const
{
    return m_data;
}

const std::string& IException::getCause() const
{
    return m_cause;
}

std::string IException::toString() const
{
    std::string text = "error:\n";
    text += std::string(INDENT) + "desc: " + m_desc + "\n";
    text += m_data;
    text += std::string(INDENT) + "file: " + m_file + "\n";
    text += std::string(INDENT) + "line: " + intToString(m_line) + "\n";
    text += "==========\n";
    text += m_cause;
    return text;
}

IException& IException::add(const std::string& key, const std::string& value)
{
    if (m_data.empty()) {
        m_data = std::string(INDENT) + "data:\n";
        m_message += "\n" + m_data;
    }
    std::string line = std::string(INDENT) + INDENT + key + ": " + value + "\n";
    m_data += line;
    m_message += line;
    return *this;
}

IException& IException::add(const std::string& key, int value)
{
    return add(key, intToString(value));
}

} // namespace kestrix
