// Utilities and the version text.

%{
#include "CUtil.h"
#include "ModuleVersion.h"
%}

%ignore kestrix::CUtil::i2a(long long);

%include "CUtil.h"
%include "ModuleVersion.h"
