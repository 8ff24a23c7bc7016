#include "COrbelClientBeta.h"

#include "OrbelIdentifiers.h"

namespace kestrix {

COrbelClientBeta::COrbelClientBeta() : m_coverage(nullptr), m_test(nullptr), m_hil(nullptr), m_betaExtra(nullptr)
{
}

COrbelClientBeta::~COrbelClientBeta()
{
    shutdown();
}

void COrbelClientBeta::queryInterfaces(Orbel* object)
{
    COrbelClient::queryInterfaces(object);
    query(object, IID_OrbelCoverage, m_coverage);
    query(object, IID_OrbelTest, m_test);
    query(object, IID_OrbelHIL, m_hil);
    query(object, IID_OrbelBetaExtra, m_betaExtra);
}

void COrbelClientBeta::releaseInterfaces()
{
    COrbelClient::releaseInterfaces();
    release(m_coverage);
    release(m_test);
    release(m_hil);
    release(m_betaExtra);
}

} // namespace kestrix
