#pragma once

#include "COrbelClient.h"
#include "OrbelBetaExtra.h"
#include "OrbelCoverage.h"
#include "OrbelHIL.h"
#include "OrbelTest.h"

namespace kestrix {

/// The client with the interfaces of coverage, test and HIL, and a fourth one that is only
/// fetched and released.
class COrbelClientBeta : public COrbelClient {
public:
    COrbelClientBeta();
    ~COrbelClientBeta() override;

    void queryInterfaces(Orbel* object) override;
    void releaseInterfaces() override;

    OrbelCoverage* getCoverage() const { return m_coverage; }
    OrbelTest* getTest() const { return m_test; }
    OrbelHIL* getHIL() const { return m_hil; }

protected:
    OrbelCoverage* m_coverage;
    OrbelTest* m_test;
    OrbelHIL* m_hil;
    OrbelBetaExtra* m_betaExtra;
};

} // namespace kestrix
