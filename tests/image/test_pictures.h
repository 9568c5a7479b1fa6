// Pictures and answers shared by the tests of the imaging foundation.
#pragma once

#include "tests/support/pictures.h"

#include <bit>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace tamlo::test {

/// sample() of tools/make_image_vectors.py: multiples of 1/64 from -2 to 14, without order.
inline Plane testPlane(std::int64_t w, std::int64_t h)
{
    Plane plane(w, h);
    float* values = plane.mutableData();
    for (std::int64_t y = 0; y < h; ++y)
        for (std::int64_t x = 0; x < w; ++x) {
            const std::int64_t v = (x * 7919 + y * 10473 + x * y * 311 + x * x * 17) % 1021;
            values[y * w + x] = static_cast<float>(v) / 64.0f - 2.0f;
        }
    return plane;
}

/// Three different channels.
inline RGBImage testImage(std::int64_t w, std::int64_t h)
{
    const Plane r = testPlane(w, h);
    return {r, r.map([](float v) { return 0.5f * v * v; }), r.map([](float v) { return 3.0f - v; })};
}

/// A case of a file of answers: the words of its first line and the floats of its second.
struct Answer {
    std::vector<std::string> words;
    std::vector<float> values;
};

inline std::vector<Answer> loadAnswers(const std::string& name)
{
    std::ifstream file(std::string(TAMLO_TEST_DATA) + "/image/" + name);
    std::vector<Answer> answers;
    std::string head, bits;
    while (std::getline(file, head) && std::getline(file, bits)) {
        Answer answer;
        std::istringstream words(head), floats(bits);
        for (std::string word; words >> word;) answer.words.push_back(word);
        for (std::string word; floats >> word;)
            answer.values.push_back(
                std::bit_cast<float>(static_cast<std::uint32_t>(std::stoul(word, {}, 16))));
        answers.push_back(answer);
    }
    return answers;
}

/// Largest distance of a plane from an answer; fails on another number of samples.
inline double distance(const Plane& plane, const std::vector<float>& values)
{
    EXPECT_EQ(plane.data.size(), values.size());
    double worst = 0.0;
    for (std::size_t i = 0; i < std::min(plane.data.size(), values.size()); ++i) {
        const double d = std::abs(static_cast<double>(plane.data[i]) - values[i]);
        worst = d > worst || d != d ? d : worst;
    }
    return worst;
}

} // namespace tamlo::test
