// The host-side change queues, as a processor reads them.

#include "sdk/hosting/ParameterChanges.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace
{

using namespace Steinberg;
using namespace Steinberg::Vst;

// All points of a queue as (offset, value) pairs.
std::vector<std::pair<int32, ParamValue>> pointsOf(IParamValueQueue* queue)
{
    std::vector<std::pair<int32, ParamValue>> points;
    for (int32 index = 0; index < queue->getPointCount(); ++index)
    {
        int32 offset = 0;
        ParamValue value = 0.0;
        EXPECT_EQ(queue->getPoint(index, offset, value), kResultTrue);
        points.emplace_back(offset, value);
    }
    return points;
}

TEST(ParameterChanges, OneQueuePerParameterInOrderOfFirstChange)
{
    auto changes = owned(new ParameterChanges());
    int32 index = -1;
    IParamValueQueue* gain = changes->addParameterData(27, index);
    EXPECT_EQ(index, 0);
    IParamValueQueue* frequency = changes->addParameterData(17, index);
    EXPECT_EQ(index, 1);
    EXPECT_EQ(changes->addParameterData(27, index), gain);
    EXPECT_EQ(index, 0);
    EXPECT_EQ(changes->getParameterCount(), 2);
    EXPECT_EQ(changes->getParameterData(1), frequency);
    EXPECT_EQ(changes->getParameterData(2), nullptr);
    EXPECT_EQ(changes->getParameterData(-1), nullptr);
    changes->clearQueue();
    EXPECT_EQ(changes->getParameterCount(), 0);
}

TEST(ParameterChanges, PointsStaySortedAndOneOffsetHoldsOneValue)
{
    auto changes = owned(new ParameterChanges());
    int32 index = 0;
    IParamValueQueue* queue = changes->addParameterData(1, index);
    queue->addPoint(40, 0.4, index);
    queue->addPoint(10, 0.1, index);
    EXPECT_EQ(index, 0);
    queue->addPoint(40, 0.45, index);
    EXPECT_EQ(index, 1);
    queue->addPoint(20, 0.2, index);
    const std::vector<std::pair<int32, ParamValue>> expected = {{10, 0.1}, {20, 0.2}, {40, 0.45}};
    EXPECT_EQ(pointsOf(queue), expected);
    int32 offset = 0;
    ParamValue value = 0.0;
    EXPECT_EQ(queue->getPoint(3, offset, value), kResultFalse);
    EXPECT_EQ(queue->getPoint(-1, offset, value), kResultFalse);
}

} // namespace
