#include "COrbelClientEclipse.h"

#include "OrbelIdentifiers.h"

namespace kestrix {

COrbelClientEclipse::COrbelClientEclipse() : m_eclipse(nullptr)
{
}

COrbelClientEclipse::~COrbelClientEclipse()
{
    shutdown();
}

void COrbelClientEclipse::queryInterfaces(Orbel* object)
{
    COrbelClientBeta::queryInterfaces(object);
    query(object, IID_OrbelEclipse, m_eclipse);
}

void COrbelClientEclipse::releaseInterfaces()
{
    COrbelClientBeta::releaseInterfaces();
    release(m_eclipse);
}

} // namespace kestrix
