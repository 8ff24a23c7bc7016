// The read-only objects of the automation library through the exported entry points, with the
// arguments and callbacks of the managed side: texts through the string callback, numbers and
// objects as they are, lists by size and at, and a delete that releases nothing.

#include <gtest/gtest.h>

#include <deque>
#include <string>
#include <vector>

#include "ICPUSFR.h"
#include "IConfiguration.h"
#include "IDisassemblyBlock.h"
#include "IDisassemblyLine.h"
#include "IExpressionType.h"
#include "IFunction.h"
#include "IGlobals.h"
#include "IModule.h"
#include "IPartition.h"
#include "ISFR.h"
#include "ISFRValueMap.h"
#include "IStackFrame.h"
#include "IStackFrameInfo.h"
#include "IVariable.h"
#include "IVectorDisassemblyLines.h"
#include "IVectorFunctions.h"
#include "IVectorModules.h"
#include "IVectorPartitions.h"
#include "IVectorSFRs.h"
#include "IVectorStackFrames.h"
#include "IVectorValueMap.h"
#include "IVectorVariables.h"
#include "OrbelResults.h"

// Entry points by kind of member: text, number (DWORD, ADDRESS and bool cross as one word),
// object; each class has its delete.
#define KX_TEXT(C, M) char* CSharp_##C##_##M(void*);
#define KX_NUMBER(C, M) unsigned int CSharp_##C##_##M(void*);
#define KX_OBJECT(C, M) void* CSharp_##C##_##M(void*);
#define KX_DELETE(C) void CSharp_delete_##C(void*);
#define KX_LIST(C)                                                                                                     \
    unsigned int CSharp_##C##_size(void*);                                                                             \
    void* CSharp_##C##_at(void*, unsigned int);                                                                        \
    KX_DELETE(C)

extern "C" {
void SWIGRegisterStringCallback_kestrixOrbel(char* (*callback)(const char*));

KX_TEXT(IModule, Name) KX_TEXT(IModule, Path) KX_DELETE(IModule)
KX_TEXT(IPartition, Name) KX_TEXT(IPartition, Path) KX_DELETE(IPartition)
KX_TEXT(IVariable, Name) KX_TEXT(IVariable, QualifiedName) KX_TEXT(IVariable, TypeName)
KX_NUMBER(IVariable, NumBytes) KX_NUMBER(IVariable, Type) KX_NUMBER(IVariable, ArrayDimension)
KX_OBJECT(IVariable, Module) KX_DELETE(IVariable)
KX_TEXT(IFunction, Name) KX_TEXT(IFunction, QualifiedName) KX_TEXT(IFunction, TypeName)
KX_OBJECT(IFunction, Module) KX_OBJECT(IFunction, Parameters) KX_DELETE(IFunction)
KX_NUMBER(IStackFrame, Address) KX_NUMBER(IStackFrame, MemoryArea) KX_TEXT(IStackFrame, FileName)
KX_NUMBER(IStackFrame, LineNumber) KX_TEXT(IStackFrame, FunctionName) KX_OBJECT(IStackFrame, Variables)
KX_OBJECT(IStackFrame, Arguments) KX_DELETE(IStackFrame)
KX_NUMBER(IDisassemblyLine, Address) KX_TEXT(IDisassemblyLine, OpCode) KX_TEXT(IDisassemblyLine, OpCodeArgs)
KX_TEXT(IDisassemblyLine, FileName) KX_NUMBER(IDisassemblyLine, LineNumber) KX_TEXT(IDisassemblyLine, FunctionName)
KX_NUMBER(IDisassemblyLine, FunctionOffset) KX_DELETE(IDisassemblyLine)
KX_NUMBER(ISFR, Handle) KX_NUMBER(ISFR, HasValue) KX_TEXT(ISFR, Name) KX_NUMBER(ISFR, BitSize)
KX_NUMBER(ISFR, Properties) KX_OBJECT(ISFR, ValueMaps) KX_OBJECT(ISFR, SFRs) KX_DELETE(ISFR)
KX_TEXT(ISFRValueMap, String) KX_NUMBER(ISFRValueMap, Value) KX_DELETE(ISFRValueMap)
KX_OBJECT(IGlobals, Variables) KX_OBJECT(IGlobals, Labels) KX_OBJECT(IGlobals, Modules)
KX_OBJECT(IGlobals, Functions) KX_DELETE(IGlobals)
KX_OBJECT(IStackFrameInfo, StackFrames) KX_DELETE(IStackFrameInfo)
KX_OBJECT(IDisassemblyBlock, Lines) KX_DELETE(IDisassemblyBlock)
KX_TEXT(ICPUSFR, CPUName) KX_OBJECT(ICPUSFR, SFRs) KX_DELETE(ICPUSFR)
KX_OBJECT(IConfiguration, Partitions) KX_DELETE(IConfiguration)
KX_OBJECT(IExpressionType, Expression) KX_OBJECT(IExpressionType, Children) KX_DELETE(IExpressionType)
KX_LIST(IVectorDisassemblyLines) KX_LIST(IVectorFunctions) KX_LIST(IVectorModules) KX_LIST(IVectorPartitions)
KX_LIST(IVectorSFRs) KX_LIST(IVectorStackFrames) KX_LIST(IVectorValueMap) KX_LIST(IVectorVariables)
}

namespace {

using namespace kestrix;

// --- the managed side's string callback -----------------------------------------------------

/// Every text the library handed over, in order; the callback answers a pointer to its copy,
/// as the managed marshaller answers memory of its own.
std::deque<std::string> received;

char* keepText(const char* text)
{
    if (text == nullptr) {
        return nullptr;
    }
    received.emplace_back(text);
    return received.back().data();
}

/// The text an entry point gave, checked to be the callback's copy.
std::string textOf(char* result)
{
    if (result == nullptr) {
        return "<null>";
    }
    EXPECT_FALSE(received.empty());
    EXPECT_EQ(received.back().data(), result) << "the result is what the callback answered";
    return result;
}

// --- objects of the automation library, as Quillon would hold them --------------------------

template <class Interface, class Element>
class FakeList final : public Interface {
public:
    std::vector<Element*> items;
    DWORD size() override { return DWORD(items.size()); }
    Element* at(DWORD index) override { return index < items.size() ? items[index] : nullptr; }
};

/// IUnknown whose count tells whether anyone released or added a reference.
template <class Interface>
class Counted : public Interface {
public:
    ULONG references = 1;
    HRESULT QueryInterface(const GUID&, void** object) override
    {
        *object = nullptr;
        return E_NOINTERFACE;
    }
    ULONG AddRef() override { return ++references; }
    ULONG Release() override { return --references; }
};

struct FakeModule final : IModule {
    const char* name = "ring.c";
    const char* path = "/src/ring.c";
    const char* Name() override { return name; }
    const char* Path() override { return path; }
};

struct FakePartition final : IPartition {
    const char* Name() override { return "boot"; }
    const char* Path() override { return "build/boot.elf"; }
};

struct FakeVariable final : IVariable {
    FakeVariable(const char* name, IModule* module) : name(name), module(module) {}
    const char* name;
    IModule* module;
    const char* Name() override { return name; }
    const char* QualifiedName() override { return "ring.c::g_ring"; }
    const char* TypeName() override { return "ring_t[4]"; }
    DWORD NumBytes() override { return 64; }
    DWORD Type() override { return 255; }
    DWORD ArrayDimension() override { return 4; }
    IModule* Module() override { return module; }
};

struct FakeFunction final : IFunction {
    IModule* module = nullptr;
    IVectorVariables* parameters = nullptr;
    const char* Name() override { return "ring_put"; }
    const char* QualifiedName() override { return "ring.c::ring_put"; }
    const char* TypeName() override { return "int"; }
    IModule* Module() override { return module; }
    IVectorVariables* Parameters() override { return parameters; }
};

struct FakeFrame final : IStackFrame {
    IVectorVariables* locals = nullptr;
    IVectorVariables* arguments = nullptr;
    ADDRESS Address() override { return 0x08000F2Au; }
    DWORD MemoryArea() override { return 3; }
    const char* FileName() override { return "main.c"; }
    DWORD LineNumber() override { return 77; }
    const char* FunctionName() override { return "main"; }
    IVectorVariables* Variables() override { return locals; }
    IVectorVariables* Arguments() override { return arguments; }
};

struct FakeLine final : IDisassemblyLine {
    ADDRESS Address() override { return 0xFFFFFFFEu; }
    const char* OpCode() override { return "ldr"; }
    const char* OpCodeArgs() override { return "r0, [pc, #4]"; }
    const char* FileName() override { return "startup.s"; }
    DWORD LineNumber() override { return 12; }
    const char* FunctionName() override { return "Reset_Handler"; }
    DWORD FunctionOffset() override { return 6; }
};

struct FakeValueMap final : ISFRValueMap {
    const char* String() override { return "ENABLED"; }
    DWORD Value() override { return 0x80000000u; }
};

struct FakeSFR final : ISFR {
    bool hasValue = true;
    IVectorValueMap* valueMaps = nullptr;
    IVectorSFRs* sfrs = nullptr;
    DWORD Handle() override { return 0x1234; }
    bool HasValue() override { return hasValue; }
    const char* Name() override { return "SYST_CSR"; }
    DWORD BitSize() override { return 32; }
    DWORD Properties() override { return 0x5; }
    IVectorValueMap* ValueMaps() override { return valueMaps; }
    IVectorSFRs* SFRs() override { return sfrs; }
};

struct FakeGlobals final : Counted<IGlobals> {
    IVectorVariables* variables = nullptr;
    IVectorVariables* labels = nullptr;
    IVectorModules* modules = nullptr;
    IVectorFunctions* functions = nullptr;
    IVectorVariables* Variables() override { return variables; }
    IVectorVariables* Labels() override { return labels; }
    IVectorModules* Modules() override { return modules; }
    IVectorFunctions* Functions() override { return functions; }
};

struct FakeStack final : Counted<IStackFrameInfo> {
    IVectorStackFrames* frames = nullptr;
    IVectorStackFrames* StackFrames() override { return frames; }
};

struct FakeBlock final : Counted<IDisassemblyBlock> {
    IVectorDisassemblyLines* lines = nullptr;
    IVectorDisassemblyLines* Lines() override { return lines; }
};

struct FakeCpu final : Counted<ICPUSFR> {
    IVectorSFRs* sfrs = nullptr;
    const char* CPUName() override { return "Cortex-M3"; }
    IVectorSFRs* SFRs() override { return sfrs; }
};

struct FakeConfiguration final : Counted<IConfiguration> {
    IVectorPartitions* partitions = nullptr;
    IVectorPartitions* Partitions() override { return partitions; }
};

struct FakeExpressionType final : Counted<IExpressionType> {
    IVariable* expression = nullptr;
    IVectorVariables* children = nullptr;
    IVariable* Expression() override { return expression; }
    IVectorVariables* Children() override { return children; }
};

// --- the tables ---------------------------------------------------------------------------

struct TextMember {
    const char* name;
    char* (*member)(void*);
    void* object;
    std::string expected;
};

struct NumberMember {
    const char* name;
    unsigned int (*member)(void*);
    void* object;
    unsigned int expected;
};

struct ObjectMember {
    const char* name;
    void* (*member)(void*);
    void* object;
    const void* expected;
};

struct ListMember {
    const char* name;
    unsigned int (*size)(void*);
    void* (*at)(void*, unsigned int);
    void* list;
    std::vector<const void*> expected;
};

void expectTexts(const std::vector<TextMember>& members)
{
    for (const TextMember& m : members) {
        EXPECT_EQ(m.expected, textOf(m.member(m.object))) << m.name;
    }
}

void expectNumbers(const std::vector<NumberMember>& members)
{
    for (const NumberMember& m : members) {
        EXPECT_EQ(m.expected, m.member(m.object)) << m.name;
    }
}

void expectObjects(const std::vector<ObjectMember>& members)
{
    for (const ObjectMember& m : members) {
        EXPECT_EQ(m.expected, m.member(m.object)) << m.name;
    }
}

/// Each element by its index, and null just behind the last.
void expectLists(const std::vector<ListMember>& lists)
{
    for (const ListMember& l : lists) {
        ASSERT_EQ(l.expected.size(), l.size(l.list)) << l.name;
        for (unsigned int i = 0; i < l.expected.size(); ++i) {
            EXPECT_EQ(l.expected[i], l.at(l.list, i)) << l.name << " at " << i;
        }
        EXPECT_EQ(nullptr, l.at(l.list, unsigned(l.expected.size()))) << l.name << " behind the end";
        EXPECT_EQ(nullptr, l.at(l.list, 0xFFFFFFFFu)) << l.name << " far behind the end";
    }
}

class ObjectForwardingTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() { SWIGRegisterStringCallback_kestrixOrbel(&keepText); }
    void SetUp() override { received.clear(); }
};

// The symbols of a program: globals, their variables, labels, modules and functions.
TEST_F(ObjectForwardingTest, SymbolsReachTheManagedSide)
{
    FakeModule module;
    FakeVariable ring("g_ring", &module);
    FakeVariable label("loop_top", nullptr);
    FakeVariable count("count", &module);
    FakeList<IVectorVariables, IVariable> variables, labels, parameters;
    variables.items = {&ring};
    labels.items = {&label};
    parameters.items = {&count, &ring};
    FakeList<IVectorModules, IModule> modules;
    modules.items = {&module};
    FakeFunction put;
    put.module = &module;
    put.parameters = &parameters;
    FakeList<IVectorFunctions, IFunction> functions;
    functions.items = {&put};
    FakeGlobals globals;
    globals.variables = &variables;
    globals.labels = &labels;
    globals.modules = &modules;
    globals.functions = &functions;

    expectObjects({
        {"IGlobals.Variables", CSharp_IGlobals_Variables, &globals, &variables},
        {"IGlobals.Labels", CSharp_IGlobals_Labels, &globals, &labels},
        {"IGlobals.Modules", CSharp_IGlobals_Modules, &globals, &modules},
        {"IGlobals.Functions", CSharp_IGlobals_Functions, &globals, &functions},
        {"IVariable.Module", CSharp_IVariable_Module, &ring, &module},
        {"IVariable.Module of a label", CSharp_IVariable_Module, &label, nullptr},
        {"IFunction.Module", CSharp_IFunction_Module, &put, &module},
        {"IFunction.Parameters", CSharp_IFunction_Parameters, &put, &parameters},
    });
    expectLists({
        {"variables", CSharp_IVectorVariables_size, CSharp_IVectorVariables_at, &variables, {&ring}},
        {"parameters", CSharp_IVectorVariables_size, CSharp_IVectorVariables_at, &parameters, {&count, &ring}},
        {"modules", CSharp_IVectorModules_size, CSharp_IVectorModules_at, &modules, {&module}},
        {"functions", CSharp_IVectorFunctions_size, CSharp_IVectorFunctions_at, &functions, {&put}},
    });
    expectTexts({
        {"IVariable.Name", CSharp_IVariable_Name, &ring, "g_ring"},
        {"IVariable.QualifiedName", CSharp_IVariable_QualifiedName, &ring, "ring.c::g_ring"},
        {"IVariable.TypeName", CSharp_IVariable_TypeName, &ring, "ring_t[4]"},
        {"IFunction.Name", CSharp_IFunction_Name, &put, "ring_put"},
        {"IFunction.QualifiedName", CSharp_IFunction_QualifiedName, &put, "ring.c::ring_put"},
        {"IFunction.TypeName", CSharp_IFunction_TypeName, &put, "int"},
        {"IModule.Name", CSharp_IModule_Name, &module, "ring.c"},
        {"IModule.Path", CSharp_IModule_Path, &module, "/src/ring.c"},
    });
    expectNumbers({
        {"IVariable.NumBytes", CSharp_IVariable_NumBytes, &ring, 64},
        {"IVariable.Type", CSharp_IVariable_Type, &ring, 255},
        {"IVariable.ArrayDimension", CSharp_IVariable_ArrayDimension, &ring, 4},
    });
}

// The call stack: its frames, each with its place, locals and arguments.
TEST_F(ObjectForwardingTest, StackFramesReachTheManagedSide)
{
    FakeVariable argc("argc", nullptr);
    FakeList<IVectorVariables, IVariable> locals, arguments;
    arguments.items = {&argc};
    FakeFrame inner, outer;
    inner.locals = &locals;
    inner.arguments = &arguments;
    FakeList<IVectorStackFrames, IStackFrame> frames;
    frames.items = {&inner, &outer};
    FakeStack stack;
    stack.frames = &frames;

    expectObjects({
        {"IStackFrameInfo.StackFrames", CSharp_IStackFrameInfo_StackFrames, &stack, &frames},
        {"IStackFrame.Variables", CSharp_IStackFrame_Variables, &inner, &locals},
        {"IStackFrame.Arguments", CSharp_IStackFrame_Arguments, &inner, &arguments},
        {"IStackFrame.Arguments none", CSharp_IStackFrame_Arguments, &outer, nullptr},
    });
    expectLists({
        {"frames", CSharp_IVectorStackFrames_size, CSharp_IVectorStackFrames_at, &frames, {&inner, &outer}},
        {"empty locals", CSharp_IVectorVariables_size, CSharp_IVectorVariables_at, &locals, {}},
        {"arguments", CSharp_IVectorVariables_size, CSharp_IVectorVariables_at, &arguments, {&argc}},
    });
    expectTexts({
        {"IStackFrame.FileName", CSharp_IStackFrame_FileName, &inner, "main.c"},
        {"IStackFrame.FunctionName", CSharp_IStackFrame_FunctionName, &inner, "main"},
    });
    expectNumbers({
        {"IStackFrame.Address", CSharp_IStackFrame_Address, &inner, 0x08000F2Au},
        {"IStackFrame.MemoryArea", CSharp_IStackFrame_MemoryArea, &inner, 3},
        {"IStackFrame.LineNumber", CSharp_IStackFrame_LineNumber, &inner, 77},
    });
}

// Disassembly: a block and its lines with their source places.
TEST_F(ObjectForwardingTest, DisassemblyReachesTheManagedSide)
{
    FakeLine first, second;
    FakeList<IVectorDisassemblyLines, IDisassemblyLine> lines;
    lines.items = {&first, &second};
    FakeBlock block;
    block.lines = &lines;

    expectObjects({{"IDisassemblyBlock.Lines", CSharp_IDisassemblyBlock_Lines, &block, &lines}});
    expectLists({{"lines", CSharp_IVectorDisassemblyLines_size, CSharp_IVectorDisassemblyLines_at, &lines,
                  {&first, &second}}});
    expectTexts({
        {"IDisassemblyLine.OpCode", CSharp_IDisassemblyLine_OpCode, &first, "ldr"},
        {"IDisassemblyLine.OpCodeArgs", CSharp_IDisassemblyLine_OpCodeArgs, &first, "r0, [pc, #4]"},
        {"IDisassemblyLine.FileName", CSharp_IDisassemblyLine_FileName, &first, "startup.s"},
        {"IDisassemblyLine.FunctionName", CSharp_IDisassemblyLine_FunctionName, &first, "Reset_Handler"},
    });
    expectNumbers({
        {"IDisassemblyLine.Address", CSharp_IDisassemblyLine_Address, &first, 0xFFFFFFFEu},
        {"IDisassemblyLine.LineNumber", CSharp_IDisassemblyLine_LineNumber, &first, 12},
        {"IDisassemblyLine.FunctionOffset", CSharp_IDisassemblyLine_FunctionOffset, &first, 6},
    });
}

// Special function registers: the CPU's list, a group with its registers, a register's values.
TEST_F(ObjectForwardingTest, SpecialFunctionRegistersReachTheManagedSide)
{
    FakeValueMap enabled;
    FakeList<IVectorValueMap, ISFRValueMap> values;
    values.items = {&enabled};
    FakeSFR csr;
    csr.valueMaps = &values;
    FakeList<IVectorSFRs, ISFR> members;
    members.items = {&csr};
    FakeSFR group;
    group.hasValue = false;
    group.sfrs = &members;
    FakeList<IVectorSFRs, ISFR> top;
    top.items = {&group};
    FakeCpu cpu;
    cpu.sfrs = &top;

    expectObjects({
        {"ICPUSFR.SFRs", CSharp_ICPUSFR_SFRs, &cpu, &top},
        {"ISFR.SFRs", CSharp_ISFR_SFRs, &group, &members},
        {"ISFR.ValueMaps", CSharp_ISFR_ValueMaps, &csr, &values},
        {"ISFR.ValueMaps none", CSharp_ISFR_ValueMaps, &group, nullptr},
    });
    expectLists({
        {"top", CSharp_IVectorSFRs_size, CSharp_IVectorSFRs_at, &top, {&group}},
        {"members", CSharp_IVectorSFRs_size, CSharp_IVectorSFRs_at, &members, {&csr}},
        {"values", CSharp_IVectorValueMap_size, CSharp_IVectorValueMap_at, &values, {&enabled}},
    });
    expectTexts({
        {"ICPUSFR.CPUName", CSharp_ICPUSFR_CPUName, &cpu, "Cortex-M3"},
        {"ISFR.Name", CSharp_ISFR_Name, &csr, "SYST_CSR"},
        {"ISFRValueMap.String", CSharp_ISFRValueMap_String, &enabled, "ENABLED"},
    });
    expectNumbers({
        {"ISFR.Handle", CSharp_ISFR_Handle, &csr, 0x1234},
        {"ISFR.HasValue", CSharp_ISFR_HasValue, &csr, 1},
        {"ISFR.HasValue of a group", CSharp_ISFR_HasValue, &group, 0},
        {"ISFR.BitSize", CSharp_ISFR_BitSize, &csr, 32},
        {"ISFR.Properties", CSharp_ISFR_Properties, &csr, 5},
        {"ISFRValueMap.Value", CSharp_ISFRValueMap_Value, &enabled, 0x80000000u},
    });
}

// The configuration's partitions and the type of an expression.
TEST_F(ObjectForwardingTest, PartitionsAndExpressionTypesReachTheManagedSide)
{
    FakePartition boot;
    FakeList<IVectorPartitions, IPartition> partitions;
    partitions.items = {&boot};
    FakeConfiguration configuration;
    configuration.partitions = &partitions;
    FakeVariable whole("g_ring", nullptr), member("head", nullptr);
    FakeList<IVectorVariables, IVariable> children;
    children.items = {&member};
    FakeExpressionType type;
    type.expression = &whole;
    type.children = &children;

    expectObjects({
        {"IConfiguration.Partitions", CSharp_IConfiguration_Partitions, &configuration, &partitions},
        {"IExpressionType.Expression", CSharp_IExpressionType_Expression, &type, &whole},
        {"IExpressionType.Children", CSharp_IExpressionType_Children, &type, &children},
    });
    expectLists({
        {"partitions", CSharp_IVectorPartitions_size, CSharp_IVectorPartitions_at, &partitions, {&boot}},
        {"children", CSharp_IVectorVariables_size, CSharp_IVectorVariables_at, &children, {&member}},
    });
    expectTexts({
        {"IPartition.Name", CSharp_IPartition_Name, &boot, "boot"},
        {"IPartition.Path", CSharp_IPartition_Path, &boot, "build/boot.elf"},
        {"IVariable.Name of a child", CSharp_IVariable_Name, &member, "head"},
    });
}

TEST_F(ObjectForwardingTest, TextsCrossByteForByteAndNullStaysNull)
{
    FakeModule module;
    const std::vector<const char*> texts = {"", "caf\xc3\xa9 \xff\x01", "a\tb\nc"};
    for (const char* text : texts) {
        module.name = text;
        EXPECT_EQ(std::string(text), textOf(CSharp_IModule_Name(&module)));
    }
    module.name = nullptr;
    const size_t before = received.size();
    EXPECT_EQ(nullptr, CSharp_IModule_Name(&module));
    EXPECT_EQ(before, received.size()) << "the callback made no copy of a null text";
}

// The objects belong to Quillon: the managed side's delete neither frees nor releases them
// (a freed object here would be a stack object, which the sanitizer names).
TEST_F(ObjectForwardingTest, DeleteReleasesNothing)
{
    FakeModule module;
    FakePartition partition;
    FakeVariable variable("v", &module);
    FakeFunction function;
    FakeFrame frame;
    FakeLine line;
    FakeSFR sfr;
    FakeValueMap valueMap;
    FakeGlobals globals;
    FakeStack stack;
    FakeBlock block;
    FakeCpu cpu;
    FakeConfiguration configuration;
    FakeExpressionType type;
    FakeList<IVectorDisassemblyLines, IDisassemblyLine> lines;
    FakeList<IVectorFunctions, IFunction> functions;
    FakeList<IVectorModules, IModule> modules;
    FakeList<IVectorPartitions, IPartition> partitions;
    FakeList<IVectorSFRs, ISFR> sfrs;
    FakeList<IVectorStackFrames, IStackFrame> frames;
    FakeList<IVectorValueMap, ISFRValueMap> valueMaps;
    FakeList<IVectorVariables, IVariable> variables;
    const struct {
        void (*remove)(void*);
        void* object;
    } deletes[] = {
        {CSharp_delete_IModule, &module},
        {CSharp_delete_IPartition, &partition},
        {CSharp_delete_IVariable, &variable},
        {CSharp_delete_IFunction, &function},
        {CSharp_delete_IStackFrame, &frame},
        {CSharp_delete_IDisassemblyLine, &line},
        {CSharp_delete_ISFR, &sfr},
        {CSharp_delete_ISFRValueMap, &valueMap},
        {CSharp_delete_IGlobals, &globals},
        {CSharp_delete_IStackFrameInfo, &stack},
        {CSharp_delete_IDisassemblyBlock, &block},
        {CSharp_delete_ICPUSFR, &cpu},
        {CSharp_delete_IConfiguration, &configuration},
        {CSharp_delete_IExpressionType, &type},
        {CSharp_delete_IVectorDisassemblyLines, &lines},
        {CSharp_delete_IVectorFunctions, &functions},
        {CSharp_delete_IVectorModules, &modules},
        {CSharp_delete_IVectorPartitions, &partitions},
        {CSharp_delete_IVectorSFRs, &sfrs},
        {CSharp_delete_IVectorStackFrames, &frames},
        {CSharp_delete_IVectorValueMap, &valueMaps},
        {CSharp_delete_IVectorVariables, &variables},
    };
    for (const auto& d : deletes) {
        d.remove(d.object);
    }
    const ULONG counts[] = {globals.references, stack.references, block.references,
                            cpu.references, configuration.references, type.references};
    for (ULONG count : counts) {
        EXPECT_EQ(1u, count) << "no reference released or added";
    }
    EXPECT_EQ("v", textOf(CSharp_IVariable_Name(&variable)));
    EXPECT_EQ(&module, CSharp_IVariable_Module(&variable));
}

} // namespace
