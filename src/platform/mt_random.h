#pragma once

#include <random>

#include "platform/platform.h"

namespace kelpa {

class MtRandom : public Random {
public:
    void seed(std::uint32_t s) override { engine_.seed(s); }
    double next() override { return std::uniform_real_distribution<double>(0.0, 1.0)(engine_); }

private:
    std::mt19937 engine_;
};

}  // namespace kelpa
