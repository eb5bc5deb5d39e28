// TLS: whom the loader believes.
#include "tests/net/LoadProbe.h"
#include "tests/support/HttpServer.h"
#include "tests/support/TestCertificate.h"

#include <gtest/gtest.h>

namespace zq::testing {

using namespace Qt::StringLiterals;
using namespace zq::platform;

TEST(SecureLoads, SucceedWithAServerThatIsTrusted) {
  const auto certificate = std::make_shared<const TestCertificate>();
  const TrustedAuthority trusted(certificate->authorityFile());
  HttpServer server(certificate);
  server.route("/", 200, "sealed");
  for (const char* host : {"127.0.0.1", "localhost"}) {
    LoadProbe probe;
    ASSERT_TRUE(probe.load(server.url("/", host))) << host;
    EXPECT_EQ(probe.data, "sealed") << host;
    EXPECT_EQ(probe.lengths, std::vector<qint64>{6}) << host;
  }
}

TEST(SecureLoads, FailWithAServerThatNobodyVouchesFor) {
  HttpServer server(std::make_shared<const TestCertificate>());
  server.route("/", 200, "sealed");
  LoadProbe probe;
  ASSERT_TRUE(probe.load(server.url()));
  EXPECT_FALSE(probe.data);
  EXPECT_EQ(probe.errorCode(), ServerCertificateUntrusted);
  EXPECT_EQ(server.requestCount(), 0) << "nothing may be asked of a server that is not trusted";
}

TEST(SecureLoads, FailWithAServerThatAnotherAuthorityVouchesFor) {
  const TestCertificate other;
  const TrustedAuthority trusted(other.authorityFile());
  HttpServer server(std::make_shared<const TestCertificate>());
  LoadProbe probe;
  ASSERT_TRUE(probe.load(server.url()));
  EXPECT_FALSE(probe.data);
  EXPECT_EQ(probe.errorCode(), ServerCertificateUntrusted);
  EXPECT_EQ(server.requestCount(), 0);
}

TEST(SecureLoads, FailWithACertificateForAnotherHost) {
  const auto certificate =
      std::make_shared<const TestCertificate>(std::vector<QByteArray>{"DNS:elsewhere.example"});
  const TrustedAuthority trusted(certificate->authorityFile());
  HttpServer server(certificate);
  for (const char* host : {"127.0.0.1", "localhost"}) {
    LoadProbe probe;
    ASSERT_TRUE(probe.load(server.url("/", host)));
    EXPECT_FALSE(probe.data);
    EXPECT_EQ(probe.errorCode(), ServerCertificateUntrusted);
  }
  EXPECT_EQ(server.requestCount(), 0);
}

TEST(SecureLoads, FailWithAServerThatSpeaksPlainly) {
  HttpServer server;
  QUrl url = server.url();
  url.setScheme(u"https"_s);
  LoadProbe probe;
  ASSERT_TRUE(probe.load(url, 0.3));
  EXPECT_FALSE(probe.data);
  EXPECT_TRUE(probe.error);
}

TEST(SecureLoads, FailWithoutTheFileOfTheAuthority) {
  const TrustedAuthority trusted(u"/nonexistent/authority.pem"_s);
  HttpServer server(std::make_shared<const TestCertificate>());
  LoadProbe probe;
  ASSERT_TRUE(probe.load(server.url()));
  EXPECT_FALSE(probe.data);
  EXPECT_TRUE(probe.error);
  EXPECT_EQ(server.requestCount(), 0);
}

// A connection that was made while another authority was trusted does not serve later loads.
TEST(SecureLoads, DoNotOutliveTheTrustTheyWereMadeWith) {
  const auto certificate = std::make_shared<const TestCertificate>();
  HttpServer server(certificate);
  server.route("/", 200, "sealed");
  {
    const TrustedAuthority trusted(certificate->authorityFile());
    LoadProbe probe;
    ASSERT_TRUE(probe.load(server.url()));
    EXPECT_EQ(probe.data, "sealed");
  }
  LoadProbe probe;
  ASSERT_TRUE(probe.load(server.url()));
  EXPECT_FALSE(probe.data);
  EXPECT_EQ(probe.errorCode(), ServerCertificateUntrusted);
}

} // namespace zq::testing
