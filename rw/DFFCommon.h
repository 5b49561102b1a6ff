#pragma once

// What every reader of model files offers.

#include "rw/Stream.h"

namespace RW {

class CDFFCommon : public CStream {
public:
    using CStream::CStream;

    /// A place that is kept for an operation to come.
    virtual void Reserved1() {}
    virtual std::uint32_t GetGeometryCount() = 0;
    virtual std::uint32_t GetMaterialCount(std::uint32_t geometry) = 0;
};

}  // namespace RW
