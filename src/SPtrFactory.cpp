#include "SPtrFactory.h"

#include "ConnectionMgr.h"

namespace kestrix {

std::shared_ptr<ConnectionMgr> SPtrFactory::newConnectionMgr()
{
    return std::make_shared<ConnectionMgr>();
}

ConnectionMgr* SPtrFactory::getConnectionMgr(std::shared_ptr<ConnectionMgr> mgr)
{
    return mgr.get();
}

} // namespace kestrix
