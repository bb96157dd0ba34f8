# The formula for Homebrew. `scripts/release --url FOLDER` fills in what stands between @ signs and
# writes it to build/dist.
class Browsersweep < Formula
  desc "Finds, measures and deletes the data that web browsers keep"
  homepage "@FOLDER@"
  url "@FOLDER@/browsersweep-@VERSION@.tar.gz"
  sha256 "@SHA256@"

  depends_on "cli11" => :build
  depends_on "cmake" => :build
  depends_on "fmt" => :build
  depends_on "ninja" => :build
  depends_on "nlohmann-json" => :build
  depends_on "leveldb"
  depends_on "libpsl"
  depends_on "lz4"
  depends_on macos: :monterey
  depends_on "utf8proc"

  uses_from_macos "expat"
  uses_from_macos "sqlite"

  def install
    system "cmake", "-S", ".", "-B", "build", "-G", "Ninja",
                    "-DBUILD_SHARED_LIBS=ON",
                    "-DBROWSERSWEEP_BUILD_TESTS=OFF",
                    "-DBROWSERSWEEP_BUILD_EXAMPLES=OFF",
                    *std_cmake_args
    system "cmake", "--build", "build"
    system "cmake", "--install", "build"
  end

  test do
    assert_match version.to_s, shell_output("#{bin}/browsersweep --version")
    assert_match "safari", shell_output("#{bin}/browsersweep --home #{testpath} browsers")
  end
end
