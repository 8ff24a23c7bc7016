// Quillon's workspace: open, save and close it.

%{
#include "CWorkspaceController.h"
%}

%shared_ptr(kestrix::CWorkspaceController)

// `newWS` leaves the library as `new_CWorkspaceControllerWS`: a free function of that name gets
// the catalogue's entry point, and the proxy's `newWS` calls it.
%ignore kestrix::CWorkspaceController::newWS;
%typemap(cscode) kestrix::CWorkspaceController %{
  public void newWS(string fileName) {
    kestrixOrbel.new_CWorkspaceControllerWS(this, fileName);
  }
%}

// The controller's base is the library's own: the managed side sees the controller alone.
%warnfilter(401) kestrix::CWorkspaceController;
%include "CWorkspaceController.h"

%inline %{
namespace kestrix {
void new_CWorkspaceControllerWS(CWorkspaceController* self, const std::string& fileName)
{
    self->newWS(fileName);
}
}
%}
