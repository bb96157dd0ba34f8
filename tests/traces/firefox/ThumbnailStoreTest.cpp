#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/documents/internal/Digest.h"
#include "browsersweep/sqlite/SQLiteError.h"
#include "browsersweep/traces/firefox/internal/FirefoxDatabases.h"
#include "browsersweep/traces/firefox/internal/FirefoxFileStores.h"

#include "tests/support/FirefoxSchemas.h"
#include "tests/support/ForwardingFileManager.h"
#include "tests/support/PlantedRows.h"
#include "tests/support/SiteStores.h"
#include "tests/support/TemporaryFolder.h"

namespace browsersweep {
namespace {

namespace fs = std::filesystem;

using tests::allBut;
using tests::everything;
using tests::only;
using Lines = std::vector<std::string>;

const std::string pageOfA = "https://www.a.com/page?q=1";
const std::string pageOfB = "https://b.com/";

class ThumbnailStoreTest : public testing::Test {
protected:
    void SetUp() override {
        profile.folder.makeFolder("tmp");
        tests::plant(tests::makeFirefoxDatabase(profile.data(), "places.sqlite"),
                     {"moz_places|id=1|url='" + pageOfA + "'",
                      "moz_places|id=2|url='" + pageOfB + "'", "moz_places|id=3|url='about:home'"},
                     "", 0);
    }

    std::string picture(const std::string& address, const std::string& ending = ".png") const {
        const std::string name = md5InDigits(address) + ending;
        profile.write("cache:thumbnails/" + name, "12345");
        return name;
    }

    std::shared_ptr<const TraceStore> store() const {
        return tests::storeAt(storesBeforeDatabases(profile.folders, profile.manager), folder);
    }

    Lines listed(const KnownHosts& hosts = {}) const {
        return tests::inShort(store()->list(hosts));
    }

    bool isThere(const std::string& name) const { return fs::exists(folder / name); }

    tests::ChromiumHome profile;
    fs::path folder = profile.cache() / "thumbnails";
};

TEST_F(ThumbnailStoreTest, aPictureIsOfTheSiteOfItsPage) {
    picture(pageOfA);
    picture(pageOfA, ".png.tmp");
    picture(pageOfB);
    const auto before = profile.folder.snapshot();
    EXPECT_EQ(listed(), (Lines{"a.com predictions 2", "b.com predictions 1"}));
    EXPECT_EQ(store()->list({}).bySite[0].size, (CleanableDataSize{2, 10}));
    EXPECT_EQ(profile.folder.snapshot(), before);
}

TEST_F(ThumbnailStoreTest, theFirstPageOfAKnownHostIsKnownWithoutTheHistory) {
    const std::string name = picture("https://www.c.com/");
    picture("http://d.com/");
    EXPECT_TRUE(store()->needsKnownHosts());
    EXPECT_EQ(listed(), Lines{"? predictions 2"});
    EXPECT_EQ(listed({"www.c.com", "d.com"}),
              (Lines{"c.com predictions 1", "d.com predictions 1"}));
    EXPECT_EQ(store()->forget(only({"c.com"}, {"www.c.com", "d.com"})), ForgetOutcome());
    EXPECT_FALSE(isThere(name));
}

TEST_F(ThumbnailStoreTest, picturesGoBySiteAndThoseOfUnknownPagesAreToldAndStay) {
    const std::string ofA = picture(pageOfA);
    const std::string ofB = picture(pageOfB);
    const std::string ofNobody = picture("https://b.com/long-forgotten");
    const std::string ofBrowser = picture("about:home");
    EXPECT_EQ(listed(), (Lines{"a.com predictions 1", "b.com predictions 1", "? predictions 2"}));
    const ForgetOutcome outcome = store()->forget(only({"a.com"}));
    ASSERT_EQ(outcome.kept.size(), 1U);
    EXPECT_EQ(outcome.kept[0],
              (KeptTrace{TraceKind::predictions, folder, store()->list({}).notBySite[0].meaning}));
    EXPECT_FALSE(isThere(ofA));
    EXPECT_TRUE(isThere(ofB) && isThere(ofNobody) && isThere(ofBrowser));
    EXPECT_EQ(store()->forget(allBut({"b.com"})), ForgetOutcome());
    EXPECT_TRUE(isThere(ofB));
    EXPECT_FALSE(isThere(ofNobody) || isThere(ofBrowser));
    EXPECT_EQ(store()->forget(everything()), ForgetOutcome());
    EXPECT_FALSE(fs::exists(folder));
}

TEST_F(ThumbnailStoreTest, unknownOnesGoWhereWhatTellsNoSiteApartIsAskedFor) {
    const std::string ofB = picture(pageOfB);
    const std::string ofNobody = picture("https://b.com/long-forgotten");
    ForgetRequest request = only({"a.com"});
    request.takesMixed = true;
    EXPECT_EQ(store()->forget(request), ForgetOutcome());
    EXPECT_TRUE(isThere(ofB));
    EXPECT_FALSE(isThere(ofNobody));
}

TEST_F(ThumbnailStoreTest, onlyPredictionsAreTaken) {
    const std::string ofA = picture(pageOfA);
    ForgetRequest request = only({"a.com"});
    request.kinds = {TraceKind::cookies};
    EXPECT_EQ(store()->forget(request), ForgetOutcome());
    EXPECT_TRUE(isThere(ofA));
}

TEST_F(ThumbnailStoreTest, ofAHistoryThatCannotBeReadNothingIsSaid) {
    profile.write("places.sqlite", "damaged");
    EXPECT_EQ(store()->list({}), TraceListing());
    const std::string ofA = picture(pageOfA);
    EXPECT_THROW(store()->list({}), SQLiteError);
    EXPECT_THROW(store()->forget(only({"b.com"})), SQLiteError);
    EXPECT_TRUE(isThere(ofA));
    EXPECT_EQ(store()->forget(everything()), ForgetOutcome());
    EXPECT_FALSE(isThere(ofA));
}

TEST_F(ThumbnailStoreTest, withoutAHistoryAllAreUnknown) {
    fs::remove(profile.data() / "places.sqlite");
    picture(pageOfA);
    EXPECT_EQ(listed(), Lines{"? predictions 1"});
}

TEST_F(ThumbnailStoreTest, aLinkAmongThemGoesUnread) {
    profile.folder.write("precious/file", "kept");
    picture(pageOfB);
    fs::create_symlink(profile.folder / "precious", folder / "link.png");
    store()->forget(allBut({"b.com"}));
    EXPECT_FALSE(fs::exists(fs::symlink_status(folder / "link.png")));
    EXPECT_TRUE(fs::exists(profile.folder / "precious/file"));
}

/** A file manager whose operations ask a control of the test. */
class WithControl : public tests::ForwardingFileManager {
public:
    WithControl(std::shared_ptr<OperationControl> control,
                std::shared_ptr<const FileManager> target)
        : ForwardingFileManager(std::move(target)), control_(std::move(control)) {}

    std::shared_ptr<OperationControl> control() const noexcept override { return control_; }

private:
    std::shared_ptr<OperationControl> control_;
};

TEST_F(ThumbnailStoreTest, listingAsksWhetherToGoOnForEachPictureAndKnownHost) {
    int asked = 0;
    const auto manager = std::make_shared<WithControl>(
        std::make_shared<OperationControl>([&asked](const OperationProgress& /*done*/) {
            ++asked;
            return false;
        }),
        profile.manager);
    const auto controlled = tests::storeAt(storesBeforeDatabases(profile.folders, manager), folder);
    const auto questions = [&](const KnownHosts& hosts) {
        asked = 0;
        controlled->list(hosts);
        return asked;
    };
    picture(pageOfA);
    const int once = questions({});
    EXPECT_EQ(questions({"x.com", "y.com", "z.com"}), once + 3);
    picture(pageOfB);
    EXPECT_EQ(questions({}), once + 1);
}

}  // namespace
}  // namespace browsersweep
