#pragma once

#include <ostream>
#include <string>

#include "services/CoverageListing.h"

namespace quillon::services {

/// The line-by-line exports of a coverage document, from a CoverageListing: each measured function, in address
/// order, with its source lines marked. Percentages have one decimal; "-" where there is nothing to count. A line's
/// status: executed (all of its code bytes ran), partly, not executed, or none (no code). A branch's outcome:
/// "taken", "not taken", "both", "not executed", or "executed" when outcomes were not recorded.
///
/// Review (Text):
///
///     Coverage review of <document>
///                                                      (blank line)
///     function <name> 0x<first>-0x<last>
///       code <executed> of <bytes> bytes executed (<percent>); branches <executed> of <branches> executed
///         (<percent>): <taken> taken, <not taken> not taken, <both> both          (one line)
///       source <path>                       "(not found)" behind it when the file cannot be read;
///                                           "source (no line information)" for code without lines
///       <mark> <line>  <text>               mark: '+' executed, '~' partly, '-' not executed, ' ' no code;
///                  branch 0x<address>: <outcome>     line number right-aligned in 5 columns, "?" without one;
///                                           without source text the line's code as "0x<first>-0x<last>, ..."
///     total: code ... (as a function's code line)
///
/// A blank line follows each function. Addresses have eight hexadecimal digits. Branch lines follow their
/// source line, indented by 11 blanks.
///
/// Review (HTML): a page of the same content: `<h1>` with the title; for each function `<h2>` with name and
/// addresses, `<p class="summary">` with the code line, and for each file `<h3>` with its path and a
/// `<table class="listing">` of one row a line: `<tr class="executed|partly|not-executed|no-code">` with the cells
/// mark, line number, `<pre>` source text, and the branches as "0x<address> <outcome>" separated by `<br>`; then
/// `<p class="total">`. Text is escaped for HTML.
///
/// XML2: the lines of code by function and file, with the counts as attributes:
///
///     <?xml version="1.0" encoding="UTF-8"?>
///     <coverage2 document="...">
///       <function name=".." first="0x.." last="0x.." bytes=".." bytes_executed=".." branches=".."
///                 branches_executed=".." taken=".." not_taken=".." both="..">
///         <file path=".." found="true|false">       path "" for code without line information
///           <line number=".." status="executed|partly|not executed" first="0x.." last="0x.." bytes=".." ...
///                 (the same count attributes as the function)/>
///         </file>
///       </function>
///       <total bytes=".." .../>
///     </coverage2>
///
/// `first` and `last` of a line are its lowest and highest code byte. Lines without code are not written.
class CoverageReview {
public:
    CoverageReview(std::string document, const CoverageListing& listing);

    void writeText(std::ostream& out) const;
    void writeHtml(std::ostream& out) const;
    void writeXml2(std::ostream& out) const;

private:
    /// "code 20 of 44 bytes executed (45.5%); branches ...".
    static std::string summary(const CoverageCounts& counts);
    static std::string percent(std::uint32_t part, std::uint32_t whole);
    static std::string hex(std::uint64_t value);
    static std::string escaped(const std::string& text);
    static char mark(CoverageListing::Status status);
    /// The line's code as "0x<first>-0x<last>" spans, comma-separated.
    static std::string spans(const SpanSet& code);
    static std::string countAttributes(const CoverageCounts& counts);
    static std::string heading(const CoverageListing::SourceFile& file);

    std::string m_document;
    const CoverageListing& m_listing;
};

} // namespace quillon::services
