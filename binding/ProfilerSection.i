// The profiler section of a test specification, its areas and their limits.
// Declared by hand: the parser events of the sections are not exported.

%{
#include "CTestProfiler.h"
#include "MinMaxLimits.h"
%}

// An area crosses as a handle of the object inside its profiler, not owned by the caller:
// it stays valid while the area is in a profiler's list or held by another copy.
%typemap(ctype) std::shared_ptr<kestrix::CProfilerArea> "void *"
%typemap(imtype, out="global::System.IntPtr") std::shared_ptr<kestrix::CProfilerArea> "global::System.IntPtr"
%typemap(cstype) std::shared_ptr<kestrix::CProfilerArea> "CProfilerArea"
%typemap(out) std::shared_ptr<kestrix::CProfilerArea> %{ $result = (void*)$1.get(); %}
%typemap(csout, excode=SWIGEXCODE) std::shared_ptr<kestrix::CProfilerArea> {
    global::System.IntPtr cPtr = $imcall;
    CProfilerArea ret = (cPtr == global::System.IntPtr.Zero) ? null : new CProfilerArea(cPtr, false);$excode
    return ret;
  }

namespace kestrix {

class ITestParserEventReceiver;

struct MinMaxLimits {
    long long m_min;
    long long m_max;
    bool m_isDefined;

    MinMaxLimits();
    MinMaxLimits(long long min, long long max, bool isDefined);
    MinMaxLimits(long long min, long long max);
    MinMaxLimits(const MinMaxLimits& other);
};

class CProfilerArea {
public:
    CProfilerArea();
    CProfilerArea(ITestParserEventReceiver* parent);

    void serialize(std::shared_ptr<IEmitter> emitter);

    std::string getAreaName() const;
    void setAreaName(const std::string& name);
    long long getAreaValue() const;
    void setAreaValue(long long value);
    bool isAreaValueSet() const;
    void disableAreaValue();

    MinMaxLimits getMinTime() const;
    void setMinTime(const MinMaxLimits& limits);
    MinMaxLimits getMaxTime() const;
    void setMaxTime(const MinMaxLimits& limits);
    MinMaxLimits getTotalTime() const;
    void setTotalTime(const MinMaxLimits& limits);
    MinMaxLimits getHits() const;
    void setHits(const MinMaxLimits& limits);
};

// Opaque to managed callers; they pass the lists between profilers whole.
typedef std::vector<std::shared_ptr<CProfilerArea> > ProfilerAreasVector;

class CTestProfiler {
public:
    enum ERunMode { rmOff = 0, rmStart = 1 };
    enum EAreaType { AREA_DATA = 0, AREA_CODE = 1 };

    CTestProfiler(ITestParserEventReceiver* parent);
    CTestProfiler(const CTestProfiler& other);

    void serialize(std::shared_ptr<IEmitter> emitter);

    ERunMode getRunMode() const;
    void setRunMode(const std::string& runMode);
    void setRunMode(ERunMode runMode);
    bool isDefaultRunMode() const;

    std::string getTriggerName() const;
    void setTriggerName(const std::string& triggerName);
    std::string getOutputFileName() const;
    void setOutputFileName(const std::string& fileName);

    bool isForceOverwrite() const;
    std::string getForceOverwrite() const;
    void setForceOverwrite(bool isForceOverwrite);
    void clearForceOverwrite();
    bool isSaveHistory() const;
    std::string getSaveHistory() const;
    void setSaveHistory(bool isSaveHistory);
    void clearSaveHistory();

    bool isEmpty() const;

    const ProfilerAreasVector& getCodeAreas() const;
    const ProfilerAreasVector& getDataAreas() const;
    void setCodeAreas(const ProfilerAreasVector& areas);
    void setDataAreas(const ProfilerAreasVector& areas);

    int getAreasSize(EAreaType type) const;
    std::shared_ptr<CProfilerArea> getArea(EAreaType type, int index) const;
    std::shared_ptr<CProfilerArea> addArea(EAreaType type);
    void removeArea(EAreaType type, int index);
    void swapAreas(EAreaType type, int first, int second);
};

} // namespace kestrix
