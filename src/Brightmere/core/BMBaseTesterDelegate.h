#pragma once

#include <Brightmere/SDKExport.h>

/// What every tester's delegate is: the common base through which a host
/// hands itself to any kind of tester. Testers never own their delegate.
class BRIGHTMERE_SDK_EXPORT BMBaseTesterDelegate
{
public:
    virtual ~BMBaseTesterDelegate() = default;
};
