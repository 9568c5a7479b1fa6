// Damages JSON texts as disks, hands and older programs do: bytes lost and doubled, values of another type,
// absurd numbers, keys gone, blocks from other files. Repeatable from its seed.
#pragma once

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace tamlo::test {

class JsonMutator {
public:
    JsonMutator(std::uint64_t seed, const std::vector<std::string>& corpus) : random_(seed), corpus_(corpus)
    {}

    /// One text of the corpus, damaged in one to four places.
    std::string next()
    {
        std::string text = pick(corpus_);
        // Mostly values: broken syntax is refused at the door and tries nothing behind it.
        if (below(5) > 0) text = withChangedValues(text);
        if (below(4) == 0) text = withChangedBytes(std::move(text));
        return text;
    }

private:
    using Json = nlohmann::json;

    std::size_t below(std::size_t n) { return static_cast<std::size_t>(random_() % n); }
    template <typename List>
    const typename List::value_type& pick(const List& list)
    {
        return list[below(list.size())];
    }

    /// A node of the document, by a walk that stops at random.
    Json* anyNode(Json& root)
    {
        Json* at = &root;
        while (at->is_structured() && !at->empty() && below(6) > 0) {
            auto it = at->begin();
            std::advance(it, static_cast<long>(below(at->size())));
            at = &*it;
        }
        return at;
    }

    double oddNumber(double from)
    {
        const double odd[] = {0.0,     -0.0, -1.0, 1.0, 1e-300,    1e300,     -1e300, 9.3e18,
                              -9.3e18, 1e9,  1e-9, 0.5, from * 10, from / 10, -from,  from * 1e6};
        return odd[below(std::size(odd))];
    }

    Json oddValue(const Json& from)
    {
        if (from.is_number() && below(4) > 0) return oddNumber(from.get<double>());
        switch (below(9)) {
        case 0:
            return nullptr;
        case 1:
            return below(2) == 0;
        case 2:
            return Json::object();
        case 3:
            return Json::array({1, 2});
        case 4:
            return std::string(below(200), 'x') + "../\u0000\"";
        case 5:
            return std::int64_t{1} << below(63);
        case 6: {
            Json nest = from;
            for (std::size_t i = 0, deep = below(90); i < deep; ++i) nest = Json::array({nest});
            return nest;
        }
        case 7: {
            Json other = Json::parse(pick(corpus_), nullptr, false);
            return *anyNode(other);
        }
        default:
            return oddNumber(1.0);
        }
    }

    std::string withChangedValues(const std::string& text)
    {
        Json root = Json::parse(text, nullptr, false);
        if (root.is_discarded()) return text;
        for (std::size_t i = 0, changes = 1 + below(4); i < changes; ++i) {
            Json& node = *anyNode(root);
            if (node.is_object() && !node.empty() && below(3) == 0) {
                auto it = node.begin();
                std::advance(it, static_cast<long>(below(node.size())));
                node.erase(it);
            } else if (node.is_object() && below(3) == 0) {
                Json other = Json::parse(pick(corpus_), nullptr, false);
                if (other.is_object()) node.update(other);
            } else {
                node = oddValue(node);
            }
        }
        return root.dump(-1, ' ', false, Json::error_handler_t::replace);
    }

    std::string withChangedBytes(std::string text)
    {
        static const std::vector<std::string> kPieces{
            "{",   "[",   "\"", "}", ",", "null", "1e999", "-", "\\u0000", "\xff", std::string(1, '\0'),
            "0x1", "\xD0"};
        for (std::size_t i = 0, changes = 1 + below(3); i < changes && !text.empty(); ++i) {
            const std::size_t at = below(text.size());
            const std::size_t length = 1 + below(std::min<std::size_t>(text.size() - at, 40));
            switch (below(5)) {
            case 0:
                text[at] = static_cast<char>(below(256));
                break;
            case 1:
                text.erase(at, length);
                break;
            case 2:
                text.insert(at, text.substr(at, length));
                break;
            case 3:
                text.insert(at, pick(kPieces));
                break;
            default:
                text.resize(at);
            }
        }
        return text;
    }

    std::mt19937_64 random_;
    const std::vector<std::string>& corpus_;
};

} // namespace tamlo::test
