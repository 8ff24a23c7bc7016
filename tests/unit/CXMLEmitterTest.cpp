#include <gtest/gtest.h>

#include "CStringStream.h"
#include "CXMLEmitter.h"
#include "IllegalStateException.h"
#include "YamlTestSupport.h"

using namespace kestrix;
using kestrix_test::failureOf;

namespace {

class CXMLEmitterTest : public ::testing::Test {
protected:
    std::shared_ptr<CStringStream> m_stream = std::make_shared<CStringStream>();
    CXMLEmitter m_emitter{m_stream};

    std::string text() const { return m_stream->getString(); }
};

} // namespace

TEST_F(CXMLEmitterTest, ReportShapedOutput)
{
    IEmitter& e = m_emitter;
    e.startStream("<?xml-stylesheet type=\"text/xsl\" href=\"r.xsl\"?>\n");
    e.startDocument(false), e.mapStart(), e.write("testResult"), e.mapStart();
    e.writeMappingPair("testId", "t1");
    e.writeMappingPair("tags", "");
    e.writeMappingPair("isError", true);
    e.writeMappingPair("isException", false);
    e.writeMappingPair("time", 1.5);
    e.writeMappingPair("count", 7u);
    e.writeMappingPair("delta", -3LL);
    e.write("expressionDiffs"), e.sequenceStart(), e.mapStart();
    e.writeMappingPair("expect", "a == 3");
    e.write("targetValues"), e.sequenceStart(), e.write("    a = 5"), e.sequenceEnd();
    e.mapEnd(), e.sequenceEnd(), e.mapEnd(), e.mapEnd(), e.endDocument(false), e.endStream();
    EXPECT_EQ("<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\n"
              "<?xml-stylesheet type=\"text/xsl\" href=\"r.xsl\"?>\n"
              "<main>\n"
              "  <doc>\n"
              "    <map>\n"
              "      <testResult>\n"
              "        <map>\n"
              "          <testId>t1</testId>\n"
              "          <tags></tags>\n"
              "          <isError>1</isError>\n"
              "          <isException>0</isException>\n"
              "          <time>1.5</time>\n"
              "          <count>7</count>\n"
              "          <delta>-3</delta>\n"
              "          <expressionDiffs>\n"
              "            <sequence>\n"
              "              <map>\n"
              "                <expect>a == 3</expect>\n"
              "                <targetValues>\n"
              "                  <sequence>\n"
              "                    <item>    a = 5</item>\n"
              "                  </sequence>\n"
              "                </targetValues>\n"
              "              </map>\n"
              "            </sequence>\n"
              "          </expressionDiffs>\n"
              "        </map>\n"
              "      </testResult>\n"
              "    </map>\n"
              "  </doc>\n"
              "</main>\n",
              text());
}

TEST_F(CXMLEmitterTest, EscapesTextButNotPairKeys)
{
    EXPECT_EQ("a&lt;b &amp; c&gt;&apos;&quot;", m_emitter.escapeSpecialChars("a<b & c>'\""));
    EXPECT_EQ("&amp; &lt;&gt;&apos;&quot; &amp;ampx &amp;", m_emitter.escapeSpecialChars("&amp; &lt;&gt;&apos;&quot; &ampx &"));
    EXPECT_EQ("", m_emitter.escapeSpecialChars(""));

    m_emitter.mapStart(), m_emitter.writeMappingPair("k<1>", "v&w");
    m_emitter.write("1 key<"), m_emitter.write(""), m_emitter.mapEnd();
    EXPECT_EQ("<map>\n"
              "  <k<1>>v&amp;w</k<1>>\n"
              "  <1 key&lt;></1 key&lt;>\n"
              "</map>\n",
              text());
}

TEST_F(CXMLEmitterTest, WritesValueObjects)
{
    CYAMLMap map;
    map.add(CYAMLScalar("name"), std::make_shared<CYAMLScalar>("x<y"));
    auto list = std::make_shared<CYAMLSequence>();
    list->add(CYAMLScalar("1"));
    map.add(CYAMLScalar("list"), list);
    CYAMLMap scalars;
    scalars.add(CYAMLScalar("k"), std::make_shared<CYAMLScalar>("v"));

    m_emitter.mapStart(), m_emitter.writeMappingPair("obj", map), m_emitter.writeMappingPair("none", CYAMLSequence());
    m_emitter.write("scalars"), m_emitter.writeMapOfScalars(scalars), m_emitter.mapEnd();
    EXPECT_EQ("<map>\n"
              "  <obj>\n"
              "    <map>\n"
              "      <name>x&lt;y</name>\n"
              "      <list>\n"
              "        <sequence>\n"
              "          <item>1</item>\n"
              "        </sequence>\n"
              "      </list>\n"
              "    </map>\n"
              "  </obj>\n"
              "  <scalars>\n"
              "    <map>\n"
              "      <k>v</k>\n"
              "    </map>\n"
              "  </scalars>\n"
              "</map>\n",
              text());
}

TEST_F(CXMLEmitterTest, RootScalarAndSequenceInKeyPosition)
{
    m_emitter.write("plain"), m_emitter.mapStart();
    // A sequence where a key is expected is written, not refused.
    m_emitter.sequenceStart(IEmitter::STYLE_FLOW), m_emitter.write("i"), m_emitter.sequenceEnd(), m_emitter.mapEnd();
    EXPECT_EQ("plain<map>\n"
              "  <sequence>\n"
              "    <item>i</item>\n"
              "  </sequence>\n"
              "</map>\n",
              text());
}

TEST_F(CXMLEmitterTest, StructureFailures)
{
    EXPECT_EQ("Tag stack is empty when writing mapping end!\n",
              failureOf<IllegalStateException>([&] { m_emitter.mapEnd(); }));
    EXPECT_EQ("Tag stack is empty when writing sequence end!\n",
              failureOf<IllegalStateException>([&] { m_emitter.sequenceEnd(); }));
    EXPECT_EQ("Unknown YAML object type: 7\n",
              failureOf<IllegalStateException>([&] { m_emitter.write(kestrix_test::UnknownObject()); }));

    m_emitter.mapStart();
    EXPECT_EQ("Mapping is not allowed as mapping key!\n",
              failureOf<IllegalStateException>([&] { m_emitter.mapStart(); }));
    EXPECT_EQ("Can not end sequence without start!\n",
              failureOf<IllegalStateException>([&] { m_emitter.sequenceEnd(); }));
    m_emitter.write("key");
    EXPECT_EQ("Can not end mapping when key is expected!\n",
              failureOf<IllegalStateException>([&] { m_emitter.mapEnd(); }));
    // What was written before a failure stays.
    EXPECT_EQ("<map>\n  <key>", text());
}
