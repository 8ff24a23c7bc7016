#pragma once

#include <exception>
#include <string>

namespace kestrix {

/// Source position of a throw site: `throw IOException(KX_POS, "text")`.
#define KX_POS __FILE__, __LINE__

/// Base of every failure the library raises. `what()` is the description followed by the
/// source position and, once data were added, the data lines.
class IException : public std::exception {
public:
    IException(const char* file, int line, const std::string& desc);
    IException(const char* file, int line, const std::string& desc, int number);
    IException(const char* file, int line, const std::string& desc, const std::string& desc2);
    IException(const char* file, int line, const std::string& desc, int number1, int number2);
    IException(const char* file, int line, const std::string& desc, const IException& cause);
    IException(const IException& other);
    IException& operator=(const IException& other);
    ~IException() override;

    const char* what() const noexcept override;
    virtual void assign(const IException& other);
    virtual const std::string& getDesc() const;
    virtual const std::string& getData() const;
    virtual const std::string& getCause() const;
    virtual std::string toString() const;

    IException& add(const std::string& key, const std::string& value);
    IException& add(const std::string& key, int value);

    /// The two-blank indent shared by the data lines and `toString`.
    static const char* const INDENT;

protected:
    static std::string intToString(int value);

private:
    void init(const char* file, int line);
    void buildMessage();

    std::string m_message;
    std::string m_desc;
    std::string m_data;
    std::string m_cause;
    const char* m_file = "";
    int m_line = 0;
};

} // namespace kestrix

/// Body of a family member: the base's constructors, and `add` returning the member's own type
/// so that `throw X(KX_POS, "...").add(...)` keeps the thrown type.
#define KX_EXCEPTION_MEMBER(Name)                                                  \
public:                                                                            \
    using IException::IException;                                                  \
    Name& add(const std::string& key, const std::string& value)                    \
    {                                                                              \
        IException::add(key, value);                                               \
        return *this;                                                              \
    }                                                                              \
    Name& add(const std::string& key, int value)                                   \
    {                                                                              \
        IException::add(key, value);                                               \
        return *this;                                                              \
    }
