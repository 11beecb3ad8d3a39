#include "tarnvik/net/http_requests.hpp"

#include <gtest/gtest.h>

#include "tarnvik/net/url_components.hpp"

namespace tarnvik {
namespace {

URL url(const char16_t* text) { return URL::URLWithString(text); }

TEST(URLComponents, AssembledFromTheEndBackwards) {
  Dictionary c{{u"scheme", u"http"},
               {u"host", u"h"},
               {u"path", u"/p"},
               {u"query", Dictionary{{u"a", u"b"}}}};
  EXPECT_EQ(URLWithComponents(c).absoluteString().utf8(), "http://h/p?a=b");
  c.setObject(u"f", u"fragment");
  EXPECT_EQ(URLWithComponents(c).absoluteString().utf8(), "http://h/p?a=b#f");
  c.setObject(u"u", u"user");
  c.setObject(u"pw", u"password");
  EXPECT_EQ(URLWithComponents(c).absoluteString().utf8(), "http://u:pw@h/p?a=b#f");
  EXPECT_EQ(URLWithComponents(Dictionary{{u"port", 8080}, {u"path", u"/x"}}).isNil(),
            true);  // ":8080/x" is no URL
  EXPECT_EQ(
      URLWithComponents(Dictionary{{u"password", u"pw"}, {u"host", u"h"}, {u"scheme", u"ftp"}})
          .absoluteString()
          .utf8(),
      "ftp://h");
}

TEST(URLComponents, OneComponentAtATime) {
  const URL base = url(u"http://u:p@h:81/p;x?q=1#f");
  EXPECT_EQ(components(base).count(), 9u);
  EXPECT_EQ(URLWithFragment(base, String()).absoluteString().utf8(), "http://u:p@h:81/p;x?q=1");
  EXPECT_EQ(URLWithHost(base, u"other").absoluteString().utf8(), "http://u:p@other:81/p;x?q=1#f");
  EXPECT_EQ(URLWithPort(base, Value(8080)).absoluteString().utf8(), "http://u:p@h:8080/p;x?q=1#f");
  EXPECT_EQ(URLWithQuery(base, Dictionary{{u"z", u"9"}}).absoluteString().utf8(),
            "http://u:p@h:81/p;x?z=9#f");
  EXPECT_EQ(URLWithScheme(base, u"https").absoluteString().utf8(), "https://u:p@h:81/p;x?q=1#f");
  EXPECT_EQ(initWithString(u"http://h/p", Dictionary::dictionary()).absoluteString().utf8(),
            "http://h/p?");
  EXPECT_EQ(ku_URLWithString(u"http://h/p", Dictionary{{u"a b", u"1&2"}, {u"c", u"é"}})
                .absoluteString()
                .utf8(),
            "http://h/p?a%20b=1&2&c=%C3%A9");
}

TEST(HTTPRequests, PostBodyAndHeaders) {
  const URLRequest r = POSTRequestWithURL(url(u"http://h/api"), Dictionary{{u"a", u"1"}});
  EXPECT_EQ(r.HTTPMethod().utf8(), "POST");
  EXPECT_EQ(r.HTTPBody().asStringView(), "a=1");
  EXPECT_EQ(r.valueForHTTPHeaderField(u"Content-Length").utf8(), "3");
  EXPECT_EQ(r.valueForHTTPHeaderField(u"Content-Type").utf8(), "application/x-www-form-urlencoded");
  EXPECT_EQ(r.valueForHTTPHeaderField(u"Content-Transfer-Encoding").utf8(), "8bit");
  EXPECT_EQ(r.valueForHTTPHeaderField(u"Accept-Encoding").utf8(), "gzip");
  EXPECT_EQ(POSTParameters(r), (Dictionary{{u"a", u"1"}}));
  URLRequest twice = r;
  addPOSTParameters(twice, Dictionary{{u"b", u"2"}}, 0);
  // The body is a bare query, so the merged text starts with "?", as for GET parameters.
  EXPECT_EQ(twice.HTTPBody().asStringView(), "?a=1&b=2");
  EXPECT_EQ(twice.valueForHTTPHeaderField(u"Content-Length").utf8(),
            "3, 8");  // appended, not replaced
  EXPECT_EQ(POSTParameters(twice), (Dictionary{{u"a", u"1"}, {u"b", u"2"}}));
  const URLRequest put = HTTPRequestWithURL(url(u"http://h/"), u"put", Dictionary{{u"k", u"v"}});
  EXPECT_EQ(put.HTTPMethod().utf8(), "PUT");
  EXPECT_EQ(put.HTTPBody().asStringView(), "k=v");
}

TEST(HTTPRequests, GetParametersGainTheDoubledQuestionMark) {
  EXPECT_EQ(
      GETRequestWithURL(url(u"http://h/p"), Dictionary{{u"a", u"1"}}).url().absoluteString().utf8(),
      "http://h/p??a=1");
  const URLRequest existing = GETRequestWithURL(url(u"http://h/p?x=1"), Dictionary{{u"a", u"1"}});
  EXPECT_EQ(existing.url().absoluteString().utf8(), "http://h/p??x=1&a=1");
  EXPECT_EQ(GETRequestWithURL(url(u"http://h/p?x=1"), Dictionary()).url().absoluteString().utf8(),
            "http://h/p?x=1");
  EXPECT_EQ(GETRequestWithURL(url(u"http://h/p"), Dictionary()).url().absoluteString().utf8(),
            "http://h/p?");
  URLRequest request(url(u"http://h/p?old=1"));
  setGETParameters(request, Dictionary{{u"n", u"2"}});
  EXPECT_EQ(request.url().absoluteString().utf8(), "http://h/p?n=2");
  EXPECT_EQ(GETParameters(request), (Dictionary{{u"n", u"2"}}));
}

TEST(HTTPRequests, BasicAuthentication) {
  URLRequest r(url(u"http://h/"));
  setHTTPBasicAuthUser(r, u"u", u"p");
  EXPECT_EQ(r.valueForHTTPHeaderField(u"Authorization").utf8(), "Basic dTpw");
  EXPECT_EQ(HTTPBasicAuthUser(r).utf8(), "u");
  EXPECT_EQ(HTTPBasicAuthPassword(r).utf8(), "p");
  URLRequest colon(url(u"http://h/"));
  setHTTPBasicAuthUser(colon, u"u", u"a:b");
  EXPECT_EQ(HTTPBasicAuthComponents(colon), (Array{u"u", u"a", u"b"}));
  EXPECT_TRUE(HTTPBasicAuthPassword(colon).isNil());
  URLRequest nils(url(u"http://h/"));
  setHTTPBasicAuthUser(nils, String(), String());
  EXPECT_EQ(HTTPBasicAuthComponents(nils), (Array{u"", u""}));
  EXPECT_EQ(HTTPBasicAuthUser(URLRequest(url(u"http://u:p@h/"))).utf8(), "u");
  EXPECT_EQ(HTTPBasicAuthPassword(URLRequest(url(u"http://u:p@h/"))).utf8(), "p");
  EXPECT_EQ(HTTPBasicAuthComponents(URLRequest(url(u"http://h/"))), (Array{u"", u""}));
  URLRequest garbage(url(u"http://h/"));
  garbage.addValue(u"Basic /w==", u"Authorization");
  EXPECT_TRUE(HTTPBasicAuthUser(garbage).isNil());
}

}  // namespace
}  // namespace tarnvik
