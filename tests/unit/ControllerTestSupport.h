#pragma once

// Fixture of the controller tests: a connection to the recording double, the double's answers
// of the debug operations, the calls it saw, and a call logger whose script can be read back.

#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "ConnectionMgr.h"
#include "FakeOrbelSupport.h"

class ControllerTest : public FakeOrbelTest {
protected:
    void SetUp() override
    {
        FakeOrbelTest::SetUp();
        m_mgr = std::make_shared<kestrix::ConnectionMgr>();
        m_mgr->connect("", 1234);
    }

    const std::shared_ptr<kestrix::ConnectionMgr>& mgr() const { return m_mgr; }
    /// The controllers made from here on use `mgr`.
    void useConnection(std::shared_ptr<kestrix::ConnectionMgr> mgr) { m_mgr = std::move(mgr); }
    fakeorbel::DebugAnswers& answers() { return script().debug; }

    /// The calls of the debug interfaces and service calls, in order, without the rest.
    std::vector<std::string> debugCalls() const
    {
        std::vector<std::string> found;
        for (const std::string& call : seen().calls) {
            if (call.compare(0, 11, "OrbelDebug.") == 0 || call.compare(0, 12, "OrbelDebug2.") == 0 ||
                call.find(".ServiceCall") != std::string::npos) {
                found.push_back(call);
            }
        }
        return found;
    }

    /// Starts the call logger of the connection; script() reads what it wrote.
    void startLogger()
    {
        m_logFile = tempFolder("ctrl_log") + "/script.py";
        m_mgr->initLogger("session", m_logFile, kestrix::CLogger::PYTHON);
    }
    std::string loggedScript() const
    {
        std::ifstream in(m_logFile);
        std::stringstream text;
        text << in.rdbuf();
        return text.str();
    }
    /// Lines of the script that contain `part`.
    std::vector<std::string> loggedLines(const std::string& part) const
    {
        std::vector<std::string> found;
        std::istringstream lines(loggedScript());
        for (std::string line; std::getline(lines, line);) {
            if (line.find(part) != std::string::npos) {
                found.push_back(line);
            }
        }
        return found;
    }

    /// The script's lines without the wait lines that a slow machine may add.
    std::vector<std::string> scriptLines() const
    {
        std::vector<std::string> lines;
        std::istringstream text(loggedScript());
        for (std::string line; std::getline(text, line);) {
            if (line.find("waitUntil(") == std::string::npos) {
                lines.push_back(line);
            }
        }
        return lines;
    }

    /// Answers GetLastError with an error message.
    void serverError(const std::string& text)
    {
        script().lastErrorResult = kestrix::ORBEL_S_MSG_FAIL;
        script().lastErrorText = text;
    }

private:
    std::shared_ptr<kestrix::ConnectionMgr> m_mgr;
    std::string m_logFile;
};
