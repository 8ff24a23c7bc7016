// The call logger. Its C++ constructors and the variadic logf are hidden from SWIG; the
// exported forms stand here in the catalogue's order.

%{
#include "CLogger.h"
%}

%include "CLogger.h"

%extend kestrix::CLogger {
  // The exported long form carries one more word before the pause, which nothing reads.
  CLogger(const std::string& fileName, kestrix::CLogger::ELanguage language, int unusedWord,
          double ignorableTimeDiff, const std::string& header)
  {
    (void)unusedWord;
    return new kestrix::CLogger(fileName, language, ignorableTimeDiff, header);
  }

  CLogger(const std::string& fileName, kestrix::CLogger::ELanguage language)
  {
    return new kestrix::CLogger(fileName, language);
  }

  // A managed caller passes no arguments: a format with argument letters is refused.
  void logf(const std::string& var, const std::string& method, const char* format)
  {
    $self->logf(var, method, format);
  }
}
