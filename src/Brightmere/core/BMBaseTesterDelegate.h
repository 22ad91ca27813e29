#pragma once

/// What every tester's delegate is: the common base through which a host
/// hands itself to any kind of tester. Testers never own their delegate.
class BMBaseTesterDelegate
{
public:
    virtual ~BMBaseTesterDelegate() = default;
};
