// The connection core: the connection manager with its configuration and instance records,
// versions, the factory of shared managers, the identifiers of the automation interface and
// the interfaces of the automation library that only pass through the managed side.

%{
#include "CQuillonVersion.h"
#include "CConnectionConfig.h"
#include "QuillonInstanceInfo.h"
#include "ConnectionMgr.h"
#include "SPtrFactory.h"
#include "SOrbelInfo.h"
#include "OrbelIdentifiers.h"
#include "Orbel.h"
#include "OrbelCoverage.h"
#include "OrbelDebug2.h"
#include "OrbelEclipse.h"
#include "OrbelHIL.h"
#include "OrbelIDE3.h"
#include "OrbelProfiler2.h"
#include "OrbelProject.h"
#include "OrbelSink.h"
#include "OrbelTest.h"
%}

%shared_ptr(kestrix::ConnectionMgr)

%ignore kestrix::CQuillonVersion::NO_SUBBUILD;
%include "CQuillonVersion.h"

%include "CConnectionConfig.h"

%include "QuillonInstanceInfo.h"
%template(VectorQuillonInstanceInfo) std::vector<kestrix::QuillonInstanceInfo>;

%include "SOrbelInfo.h"

// Its base only gives the library shared_from_this; the managed side does not see it.
%warnfilter(401) kestrix::ConnectionMgr;
%include "ConnectionMgr.h"

// The factory's new manager is exported under the constructor-like name of the catalogue; the
// proxy's newConnectionMgr() calls it.
%ignore kestrix::SPtrFactory::newConnectionMgr;
%typemap(cscode) kestrix::SPtrFactory %{
  public ConnectionMgr newConnectionMgr() {
    return kestrixOrbel.new_SPtrFactoryConnectionMgr(this);
  }
%}
%include "SPtrFactory.h"
%inline %{
namespace kestrix {
std::shared_ptr<ConnectionMgr> new_SPtrFactoryConnectionMgr(SPtrFactory* factory)
{
    // The factory holds nothing: a null one makes a manager just the same.
    return factory != nullptr ? factory->newConnectionMgr() : SPtrFactory().newConnectionMgr();
}
}
%}

// Identifiers: each read gives a fresh copy, which the managed side keeps.
%typemap(out) kestrix::GUID * %{ $result = new kestrix::GUID(*$1); %}
%immutable;
namespace kestrix {
struct GUID;
extern const GUID CLSID_ORBEL;
extern const GUID IID_Orbel;
extern const GUID IID_OrbelIDE;
extern const GUID IID_OrbelDebug;
extern const GUID IID_OrbelProfiler2;
extern const GUID IID_OrbelProject;
extern const GUID IID_OrbelDebug2;
extern const GUID IID_OrbelIDE2;
extern const GUID IID_OrbelIDE3;
extern const GUID IID_OrbelCoverage;
extern const GUID IID_OrbelTest;
extern const GUID IID_OrbelHIL;
extern const GUID IID_OrbelEclipse;
extern const GUID IID_OrbelProfiler;
extern const GUID IID_OrbelSink;
extern const GUID IID_IDescriptor;
}
%mutable;
%clear kestrix::GUID *;

// Interfaces of the automation library that the managed side only holds and hands on: SWIG
// sees their names and bases, not their operations. Their references belong to the automation
// client, which releases them itself, so the managed side's delete releases nothing.
%define KX_PASS_THROUGH(NAME)
%nodefaultctor kestrix::NAME;
%extend kestrix::NAME {
  ~NAME() { (void)$self; }
}
%enddef

KX_PASS_THROUGH(Orbel)
KX_PASS_THROUGH(OrbelCoverage)
KX_PASS_THROUGH(OrbelDebug)
KX_PASS_THROUGH(OrbelDebug2)
KX_PASS_THROUGH(OrbelEclipse)
KX_PASS_THROUGH(OrbelHIL)
KX_PASS_THROUGH(OrbelIDE)
KX_PASS_THROUGH(OrbelIDE2)
KX_PASS_THROUGH(OrbelIDE3)
KX_PASS_THROUGH(OrbelProfiler)
KX_PASS_THROUGH(OrbelProfiler2)
KX_PASS_THROUGH(OrbelProject)
KX_PASS_THROUGH(OrbelSink)
KX_PASS_THROUGH(OrbelTest)

namespace kestrix {
class Orbel {};
class OrbelCoverage {};
class OrbelDebug {};
class OrbelDebug2 : public OrbelDebug {};
class OrbelEclipse {};
class OrbelHIL {};
class OrbelIDE {};
class OrbelIDE2 : public OrbelIDE {};
class OrbelIDE3 : public OrbelIDE2 {};
class OrbelProfiler {};
class OrbelProfiler2 : public OrbelProfiler {};
class OrbelProject {};
class OrbelSink {};
class OrbelTest {};
}
