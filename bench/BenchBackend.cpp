#include "BenchBackend.h"

#include "LinuxPlatform.h"

namespace stowly::bench {

namespace {

class LinuxBenchBackend : public BenchBackend {
public:
    Platform& platform() override { return m_linux.platform(); }

private:
    x11::LinuxPlatform m_linux;
};

} // namespace

std::unique_ptr<BenchBackend> makeBenchBackend()
{
    return std::make_unique<LinuxBenchBackend>();
}

} // namespace stowly::bench
