package pkgs.natives;

import java.lang.reflect.Field;
import java.lang.reflect.Method;
import java.net.URL;
import java.net.URLClassLoader;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.stream.Stream;

/**
 * How the native library gets into the virtual machine. Arguments: where it is expected to come
 * from for the first class loader ("path": java.library.path holds it; "jar": it does not) and
 * the path of orloHKGeocoder.jar. Prints "N passed, N failed" and exits non-zero on a failure.
 */
public final class NativeLoadingTest {
  private static int passed;
  private static int failed;

  private NativeLoadingTest() {}

  public static void main(String[] args) throws Exception {
    // A temporary folder of this run's own, to see that an extracted copy leaves nothing behind.
    Path tmp =
        Path.of(
            System.getProperty("java.io.tmpdir"), "orlo-loading-" + ProcessHandle.current().pid());
    Files.createDirectories(tmp);
    System.setProperty("java.io.tmpdir", tmp.toString());

    String expected =
        args[0].equals("path")
            ? "java.library.path"
            : "jar:" + NativeLibrary.resourcePath("orloHKGeocoder");
    check(callsNative(OrloHKGeocoder.class), "first class loader calls into the library");
    check(
        expected.equals(NativeLibrary.loadedFrom()),
        "first loader took it from " + expected + ", not " + NativeLibrary.loadedFrom());

    // A second class loader over the same jar gets a library of its own: the virtual machine
    // refuses the java.library.path copy to a second loader, so it comes from the jar.
    URL[] jar = {Path.of(args[1]).toUri().toURL()};
    try (URLClassLoader second = new URLClassLoader(jar, ClassLoader.getPlatformClassLoader())) {
      check(
          callsNative(second.loadClass(OrloHKGeocoder.class.getName())),
          "second class loader calls into the library");
      Field from = second.loadClass(NativeLibrary.class.getName()).getDeclaredField("loadedFrom");
      from.setAccessible(true);
      check(
          String.valueOf(from.get(null)).startsWith("jar:"),
          "second loader took it from the jar, not " + from.get(null));
    }
    try (Stream<Path> left = Files.list(tmp)) {
      check(left.count() == 0, "extracted copies are deleted once loaded");
    }
    Files.delete(tmp);

    // Neither place has it: the error names both.
    String resource = "/pkgs/natives/native/none/libnoSuchLibrary.so";
    try {
      NativeLibrary.load("noSuchLibrary", resource);
      check(false, "a missing library fails to load");
    } catch (UnsatisfiedLinkError e) {
      String path = System.getProperty("java.library.path");
      String[] named = {"libnoSuchLibrary.so", "java.library.path", path, resource};
      for (String part : named) {
        check(e.getMessage().contains(part), "the error names " + part + ": " + e.getMessage());
      }
    }
    System.out.println(passed + " passed, " + failed + " failed");
    System.exit(failed == 0 ? 0 : 1);
  }

  // copyFields marks a source record that is too short with 'V' in byte 0 of the input record.
  private static boolean callsNative(Class<?> geocoder) throws Exception {
    Method copyFields = geocoder.getMethod("copyFields", byte[].class, byte[].class);
    byte[] in = new byte[200];
    copyFields.invoke(null, new byte[100], in);
    return in[0] == 'V';
  }

  private static void check(boolean ok, String what) {
    if (ok) {
      passed++;
    } else {
      failed++;
      System.out.println("FAILED: " + what);
    }
  }
}
