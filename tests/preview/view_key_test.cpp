#include "app/preview/render_process.h"
#include "app/preview/view_key.h"
#include "core/image/tamlo_error.h"
#include "core/profiles/catalogue/profile_store.h"
#include "platform/content_hash.h"
#include "tests/support/rolls.h"
#include "tests/support/scratch_folder.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <set>

namespace tamlo::test {
namespace {

TEST(ViewKey, TheHashIsThePublishedOne)
{
    // FIPS 180-4, examples of one and of two blocks.
    EXPECT_EQ(platform::sha256("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_EQ(platform::sha256("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq"),
              "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1");
    EXPECT_EQ(platform::sha256(""), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
}

TEST(ViewKey, TheTextFormIsFixed)
{
    const Json json{
        {"b", 1.0},  {"a", -0.0},           {"é", "a/b\n\"ж"}, {"Z", nullptr},          {"n", {0.1, 2}},
        {"e", 1e-7}, {"big", 1234567890.5}, {"t", true},       {"o", {{"x", nullptr}}}, {"l", Json::array()},
        {"i", -7}};
    EXPECT_EQ(ViewKey::canonical(json),
              "{\"a\":0,\"b\":1,\"big\":1234567890.5,\"e\":1e-07,\"i\":-7,\"l\":[],\"n\":[0.1,2],\"o\":{},"
              "\"t\":true,\"é\":\"a/b\\n\\\"ж\"}");
    EXPECT_THROW(ViewKey::canonical(Json(std::numeric_limits<double>::infinity())), TamloError);
    EXPECT_THROW(ViewKey::canonical(Json("\xff")), TamloError) << "no key, and so no tile";
}

class ViewKeys : public testing::Test {
protected:
    ViewKeys() { setenv("TAMLO_USER_DIR", folder_.path().c_str(), 1); }
    ~ViewKeys() override { unsetenv("TAMLO_USER_DIR"); }

    std::string keyOf(const Frame& frame, bool originals = false, const std::string& build = "1.2")
    {
        return ViewKey::key(ViewKey::inputsOf(frame, gate_, originals, ProfileStore(), build));
    }

    ScratchFolder folder_;
    std::optional<std::string> gate_;
};

TEST_F(ViewKeys, WhateverChangesThePictureChangesTheKeyAndNothingElseDoes)
{
    const Frame frame = frameNumber(7);
    const std::string first = keyOf(frame);
    EXPECT_EQ(first.size(), 64 + 4u);
    std::set<std::string> keys{first};
    const std::function<void(Frame&)> visible[] = {[](Frame& f) {
                                                       f.crop = Crop{0, 0, 0.5, 0.5, 0};
                                                   },
                                                   [](Frame& f) { f.orient.rot = (f.orient.rot + 1) % 4; },
                                                   [](Frame& f) { f.orient.mirror = !f.orient.mirror; },
                                                   [](Frame& f) { f.seed = 5; },
                                                   [](Frame& f) { f.process.reset(); },
                                                   [](Frame& f) { f.fingerprint->hash ^= 1; },
                                                   [](Frame& f) {
                                                       ProcessSettings p = *f.process;
                                                       p.presetName = "another";
                                                       f.process = p;
                                                   },
                                                   [](Frame& f) {
                                                       ProcessSettings p = *f.process;
                                                       p.options.wbMode = "asshot";
                                                       f.process = p;
                                                   }};
    for (const auto& change : visible) {
        Frame changed = frame;
        change(changed);
        EXPECT_TRUE(keys.insert(keyOf(changed)).second) << keys.size();
    }
    const std::function<void(Frame&)> invisible[] = {
        [](Frame& f) { f.url = "/elsewhere/" + f.fileName(); }, [](Frame& f) { f.mark = Mark::rejected; },
        [](Frame& f) { f.fingerprint->mtime += 5; }, [](Frame& f) { f.exportedName = "x"; },
        [](Frame& f) {
            ProcessSettings p = *f.process;
            p.options.grade += 1;
            p.options.grade -= 1;
            f.process = p;
        }};
    for (const auto& change : invisible) {
        Frame changed = frame;
        change(changed);
        EXPECT_EQ(keyOf(changed), first);
    }
    gate_ = "none";
    EXPECT_NE(keyOf(frame), first);
    gate_ = "full";
    EXPECT_EQ(keyOf(frame), first) << "the rule that holds without one";
    Frame original = frame;
    original.process.reset();
    EXPECT_EQ(keyOf(frame, true), keyOf(original));
}

TEST_F(ViewKeys, TheBuildIsBesideTheHash)
{
    const Frame frame = frameNumber(3);
    EXPECT_EQ(ViewKey::hashOf(keyOf(frame, false, "1")), ViewKey::hashOf(keyOf(frame, false, "2")));
    EXPECT_EQ(keyOf(frame, false, "0.1.0+ab-c"), ViewKey::hashOf(keyOf(frame)) + "-0.1.0abc");
    EXPECT_TRUE(keyOf(frame, false, "+ж").ends_with("-dev"));
}

TEST_F(ViewKeys, AnEditedProfileOfTheUserIsAnotherView)
{
    ProfileStore store;
    const std::string own = store.duplicateProfile(ProfileKind::films, "portra400", "mine").stem().string();
    Frame frame = frameNumber(1);
    ProcessSettings process = *frame.process;
    process.stock = own;
    frame.process = process;
    const auto inputs = ViewKey::inputsOf(frame, {}, false, store, "1");
    ASSERT_TRUE(inputs.materials);
    std::string text = store.data(ProfileKind::films, own);
    text.insert(text.rfind('}'), ", \"notes\": \"changed\"");
    store.saveUserProfile(ProfileKind::films, own, text);
    EXPECT_NE(ViewKey::inputsOf(frame, {}, false, store, "1").materials, inputs.materials);
    process.stock = "portra400";
    frame.process = process;
    EXPECT_FALSE(ViewKey::inputsOf(frame, {}, false, store, "1").materials);
}

TEST_F(ViewKeys, AFilmsEdgeShowsThePlaceInTheRoll)
{
    Roll roll;
    for (std::uint8_t n : {1, 2, 3}) {
        Frame frame = frameNumber(n);
        ProcessSettings process = *frame.process;
        process.options.framePrint = n != 1;
        process.options.frameNumber = n == 3 ? 17 : 0;
        frame.process = process;
        roll.append(frame);
    }
    const auto number = [&](std::size_t i, const Roll* of) {
        return renderProcess(*roll[i].process, roll[i], {}, {}, of).options.frameNumber;
    };
    EXPECT_EQ(number(0, &roll), 0) << "nothing is printed";
    EXPECT_EQ(number(1, &roll), 2);
    EXPECT_EQ(number(1, nullptr), 0);
    EXPECT_EQ(number(2, &roll), 17) << "its own";
    const auto keyIn = [&](const Roll& of, const Frame& frame) {
        return ViewKey::key(ViewKey::inputsOf(frame, {}, false, ProfileStore(), "1", &of));
    };
    Roll turned = roll;
    turned.arrange({1, 0, 2});
    EXPECT_EQ(keyIn(roll, roll[0]), keyIn(turned, roll[0]));
    EXPECT_NE(keyIn(roll, roll[1]), keyIn(turned, roll[1]));
    EXPECT_EQ(keyIn(roll, roll[2]), keyIn(turned, roll[2]));
}

} // namespace
} // namespace tamlo::test
