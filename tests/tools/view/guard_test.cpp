#include "tools/kpf/view/guard.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>

namespace {

using KPF_TOOL::Guard;
using KPF_TOOL::makeSecret;
using KPF_TOOL::Visit;

const std::string kHere = "127.0.0.1:4711";
const std::string kOrigin = "http://" + kHere;

class GuardTest : public testing::Test {
 protected:
  /// As our own page asks for something.
  static Visit visit(const std::string& path, const std::string& method = "GET") {
    return {method, path, kHere, method == "GET" ? "" : kOrigin, "same-origin", "cors"};
  }

  bool admits(const Visit& visit) const { return guard_.admit(visit).has_value(); }

  Guard guard_{kHere, "0123abcd"};
};

TEST_F(GuardTest, GivesThePathBehindTheSecret) {
  EXPECT_EQ(guard_.admit(visit("/0123abcd/")), "");
  EXPECT_EQ(guard_.admit(visit("/0123abcd")), "");
  EXPECT_EQ(guard_.admit(visit("/0123abcd/api/frames")), "api/frames");
  EXPECT_EQ(guard_.admit(visit("/0123abcd//x")), "/x");
}

TEST_F(GuardTest, RefusesWhoeverDoesNotKnowTheSecret) {
  for (const char* path :
       {"", "/", "0123abcd/", "/0123abc", "/0123abcd0/", "/0123abce/", "/1123abcd/", "//0123abcd/",
        "/x/0123abcd/", "/0123ABCD/", "/api/frames"}) {
    EXPECT_FALSE(admits(visit(path))) << path;
  }
}

TEST_F(GuardTest, HostIsMatchedExactly) {
  for (const char* host :
       {"", "127.0.0.1", "127.0.0.1:4712", "127.0.0.1:47110", "localhost:4711", "evil.example:4711",
        "127.0.0.1:4711.evil.example", "127.0.0.1:4711 ", "given twice"}) {
    Visit one = visit("/0123abcd/");
    one.host = host;
    EXPECT_FALSE(admits(one)) << host;
  }
}

TEST_F(GuardTest, OriginIsMatchedExactly) {
  Visit one = visit("/0123abcd/");
  one.origin = kOrigin;
  EXPECT_TRUE(admits(one));
  for (const char* origin :
       {"null", "http://127.0.0.1", "https://127.0.0.1:4711", "http://127.0.0.1:4711/",
        "http://evil.example", "HTTP://127.0.0.1:4711", "given twice"}) {
    one.origin = origin;
    EXPECT_FALSE(admits(one)) << origin;
  }
}

TEST_F(GuardTest, PostNeedsOurOrigin) {
  EXPECT_TRUE(admits(visit("/0123abcd/api/jobs", "POST")));
  Visit form = visit("/0123abcd/api/jobs", "POST");
  for (const char* origin : {"", "null", "http://evil.example"}) {
    form.origin = origin;
    EXPECT_FALSE(admits(form)) << origin;
  }
}

TEST_F(GuardTest, OtherMethodsAreNobodys) {
  EXPECT_TRUE(admits(visit("/0123abcd/", "HEAD")));
  for (const char* method : {"PUT", "DELETE", "PATCH", "OPTIONS", "CONNECT", "TRACE", "get", ""}) {
    EXPECT_FALSE(admits(visit("/0123abcd/", method))) << method;
  }
}

TEST_F(GuardTest, OtherSitesMayLeadToThePageAndToNothingElse) {
  Visit one = visit("/0123abcd/");
  for (const char* site : {"cross-site", "same-site", "nonsense"}) {
    one = visit("/0123abcd/");
    one.fetchSite = site;
    one.fetchMode = "navigate";
    EXPECT_TRUE(admits(one)) << site;
    one.path = "/0123abcd/api/recordings";
    EXPECT_FALSE(admits(one)) << site;
    one = visit("/0123abcd/");
    one.fetchSite = site;
    for (const char* mode : {"", "no-cors", "cors"}) {
      one.fetchMode = mode;
      EXPECT_FALSE(admits(one)) << site << ' ' << mode;
    }
  }
}

TEST_F(GuardTest, ProgramsThatAreNoBrowserSayNothingOfSites) {
  Visit one = visit("/0123abcd/api/frames");
  one.fetchSite = one.fetchMode = "";
  EXPECT_TRUE(admits(one));
  one.fetchSite = "none";  // typed into the address bar
  EXPECT_TRUE(admits(one));
}

TEST(Secret, Is128BitsInDigitsAndNeverTheSame) {
  std::set<std::string> secrets;
  for (int i = 0; i < 100; ++i) {
    const std::string secret = makeSecret();
    EXPECT_EQ(secret.size(), 32U);
    EXPECT_TRUE(std::all_of(secret.begin(), secret.end(), [](char digit) {
      return (digit >= '0' && digit <= '9') || (digit >= 'a' && digit <= 'f');
    })) << secret;
    secrets.insert(secret);
  }
  EXPECT_EQ(secrets.size(), 100U);
}

}  // namespace
