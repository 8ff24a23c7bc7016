// Quillon's build manager: the project controller, its build options and the build status record.

%{
#include "CBuildStatus.h"
#include "CBuildOptions.h"
#include "CProjectController.h"
%}

// The status is read through its getters; its fields and state numbers are the interface's.
%ignore kestrix::CBuildStatus::EState;
%ignore kestrix::CBuildStatus::m_dwState;
%ignore kestrix::CBuildStatus::m_dwNumErrors;
%ignore kestrix::CBuildStatus::m_dwNumWarnings;
%include "CBuildStatus.h"

// The controllers' base is the library's own: the managed side sees the controllers alone.
%ignore kestrix::CBuildOptions::VALUE_BUFFER_SIZE;
%ignore kestrix::CBuildOptions::CBuildOptions;
%warnfilter(401) kestrix::CBuildOptions;
%include "CBuildOptions.h"
%warnfilter(401) kestrix::CProjectController;
%include "CProjectController.h"
