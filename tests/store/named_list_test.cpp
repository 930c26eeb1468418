#include "store/named_list.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace {

using List = kzb::NamedList<kzb::Named<int>>;

// Pairs of name and value in order, searched from the front.
class PlainList {
  public:
    int* find(const std::string& name) {
        const auto found = std::find_if(pairs_.begin(), pairs_.end(), [&](const auto& p) { return p.first == name; });
        return found == pairs_.end() ? nullptr : &found->second;
    }
    void require(const std::string& name, int value) {
        if (find(name) == nullptr) {
            pairs_.emplace_back(name, value);
        }
    }
    void erase(const std::string& name) {
        const auto is_it = [&](const auto& p) { return p.first == name; };
        pairs_.erase(std::remove_if(pairs_.begin(), pairs_.end(), is_it), pairs_.end());
    }
    void swap_names(const std::string& first, const std::string& second) {
        if (find(first) == nullptr || find(second) == nullptr) {
            return;
        }
        for (auto& pair : pairs_) {
            pair.first = pair.first == first ? second : pair.first == second ? first : pair.first;
        }
    }
    const auto& pairs() const { return pairs_; }

  private:
    std::vector<std::pair<std::string, int>> pairs_;
};

void expect_same(List& list, PlainList& plain, int names) {
    ASSERT_EQ(list.size(), plain.pairs().size());
    for (std::size_t i = 0; i < list.size(); ++i) {
        ASSERT_EQ(list[i].keyword, plain.pairs()[i].first);
        ASSERT_EQ(list[i].value, plain.pairs()[i].second);
    }
    for (int n = 0; n < names; ++n) {
        const std::string name = "name" + std::to_string(n);
        const auto* const found = list.find(name);
        const int* const wanted = plain.find(name);
        ASSERT_EQ(found == nullptr, wanted == nullptr) << name;
        if (found != nullptr) {
            ASSERT_EQ(found->value, *wanted) << name;
        }
    }
}

TEST(NamedList, is_a_list_searched_from_its_front_however_many_names_it_has) {
    for (const int names : {3, 8, 9, 10, 40}) {
        std::mt19937 random(static_cast<unsigned>(names));
        List list;
        PlainList plain;
        for (int step = 0; step < 600; ++step) {
            const auto any = [&] { return "name" + std::to_string(random() % static_cast<unsigned>(names)); };
            const std::string name = any();
            switch (random() % 8) {
                case 0:
                case 1:
                    list.erase(name);
                    plain.erase(name);
                    break;
                case 2: {
                    const std::string other = any();
                    list.swap_names(name, other);
                    plain.swap_names(name, other);
                    break;
                }
                default:
                    if (list.find(name) == nullptr) {
                        list.require(name).value = step;
                        plain.require(name, step);
                    }
            }
            expect_same(list, plain, names);
        }
    }
}

TEST(NamedList, a_name_that_stands_in_the_list_may_be_asked_for) {
    List list;
    for (int n = 0; n < 20; ++n) {
        list.require("name" + std::to_string(n)).value = n;
        EXPECT_EQ(list.require(list[0].keyword).value, 0);
        EXPECT_EQ(list.size(), static_cast<std::size_t>(n) + 1);
    }
    list.erase(list[3].keyword);
    EXPECT_EQ(list.size(), 19U);
    EXPECT_EQ(list.find("name3"), nullptr);
    EXPECT_EQ(list.find("name19")->value, 19);
}

}  // namespace
