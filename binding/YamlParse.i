// Parser entry points and the helpers that read YAML fragments given as text. The receiver
// and scalar arguments stay opaque: managed callers hand on objects they got from the library.

%{
#include "CYAMLUtil.h"
#include "CYAMLScalar.h"
#include "ITestParserEventReceiver.h"
%}

%include "CYAMLUtil.h"
