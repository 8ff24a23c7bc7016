#pragma once

#include "COrbelClientBeta.h"
#include "OrbelEclipse.h"

namespace kestrix {

/// The client that `ConnectionMgr` creates: the beta client and the Eclipse interface.
class COrbelClientEclipse : public COrbelClientBeta {
public:
    COrbelClientEclipse();
    ~COrbelClientEclipse() override;

    void queryInterfaces(Orbel* object) override;
    void releaseInterfaces() override;

protected:
    OrbelEclipse* m_eclipse;
};

} // namespace kestrix
