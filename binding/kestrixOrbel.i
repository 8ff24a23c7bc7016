// The managed binding: every exported entry point is generated from this interface.
%module(directors="1") kestrixOrbel

%include <std_string.i>
%include "kestrix_std_vector.i"
%include "kestrix_std_map.i"
%include <std_shared_ptr.i>
%include <carrays.i>

%include "Frame.i"

// One file per area; each declares its classes and the families they need.
%include "Containers.i"
%include "Core.i"
%include "Streams.i"
%include "Values.i"
%include "Logger.i"
%include "Statistics.i"
%include "YamlOutput.i"
%include "YamlParse.i"
%include "AnalyzerSections.i"
%include "Sections.i"
%include "ProfilerSection.i"
%include "Config.i"
%include "TestSpec.i"
%include "Results.i"
%include "Connection.i"
%include "Debug.i"
%include "Profiler.i"
%include "IDE.i"
%include "Workspace.i"
%include "Documents.i"
%include "HIL.i"
%include "Project.i"
%include "Objects.i"
%include "TestRun.i"

// Catalogue names where SWIG's own differ; must come after the wrapped classes.
%include "NameShims.i"
