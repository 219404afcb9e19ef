package pkgs.natives;

import java.io.IOException;
import java.io.InputStream;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.Locale;

/**
 * Loads liborloHKGeocoder into the virtual machine, once per class loader (from the static
 * initialiser of {@link OrloHKGeocoder}).
 *
 * <p>The library is taken from {@code java.library.path} when it is there, so that a system
 * installation or an explicit path wins. Otherwise the copy that the jar carries for this
 * platform (resource {@code /pkgs/natives/native/<os>-<arch>/liborloHKGeocoder.so}) is copied to
 * a fresh private temporary directory, loaded and deleted again: the mapping stays valid after
 * the file is gone, nothing is left behind, and every class loader gets a copy of its own (a
 * virtual machine refuses to load one file into two class loaders). When neither works, an
 * {@link UnsatisfiedLinkError} names both places and why each failed.
 */
final class NativeLibrary {
  /** The library name as {@link System#loadLibrary} takes it. */
  static final String NAME = "orloHKGeocoder";

  private static String loadedFrom;

  private NativeLibrary() {}

  /** Loads the library unless this class loader has loaded it already. */
  static synchronized void load() {
    if (loadedFrom == null) {
      loadedFrom = load(NAME, resourcePath(NAME));
    }
  }

  /**
   * Where the library of this class loader came from: {@code "java.library.path"}, or {@code
   * "jar:"} followed by the resource path; null before {@link #load()}.
   */
  static synchronized String loadedFrom() {
    return loadedFrom;
  }

  /** The platform folder of the jar's native libraries, for example {@code linux-amd64}. */
  static String platform() {
    String os = System.getProperty("os.name", "unknown").toLowerCase(Locale.ROOT);
    String arch = System.getProperty("os.arch", "unknown").toLowerCase(Locale.ROOT);
    return os.replaceAll("[^a-z0-9]+", "") + "-" + arch;
  }

  /** The resource path of library {@code name} for this platform inside the jar. */
  static String resourcePath(String name) {
    return "/pkgs/natives/native/" + platform() + "/" + System.mapLibraryName(name);
  }

  /**
   * Loads library {@code name} from java.library.path, else from {@code resource} of this jar.
   * Returns where it came from (see {@link #loadedFrom()}); throws UnsatisfiedLinkError naming
   * both places when neither can be loaded.
   */
  static String load(String name, String resource) {
    String pathFailure;
    try {
      System.loadLibrary(name);
      return "java.library.path";
    } catch (UnsatisfiedLinkError e) {
      pathFailure = e.getMessage();
    }
    String jarFailure;
    try {
      if (loadFromResource(resource)) {
        return "jar:" + resource;
      }
      jarFailure = "the jar holds no such resource (built for another platform?)";
    } catch (IOException | UnsatisfiedLinkError e) {
      jarFailure = e.getMessage();
    }
    throw new UnsatisfiedLinkError(
        "cannot load "
            + System.mapLibraryName(name)
            + ", neither from java.library.path ("
            + System.getProperty("java.library.path")
            + "): "
            + pathFailure
            + "; nor from resource "
            + resource
            + " in the jar: "
            + jarFailure);
  }

  /** Copies the resource to a private temporary file, loads it, deletes it; false if absent. */
  private static boolean loadFromResource(String resource) throws IOException {
    try (InputStream in = NativeLibrary.class.getResourceAsStream(resource)) {
      if (in == null) {
        return false;
      }
      // createTempDirectory makes the directory readable by its owner only.
      Path dir = Files.createTempDirectory("orloHKGeocoder-");
      Path file = dir.resolve(resource.substring(resource.lastIndexOf('/') + 1));
      try {
        Files.copy(in, file);
        System.load(file.toAbsolutePath().toString());
      } finally {
        deleteOrLater(file);
        deleteOrLater(dir);
      }
      return true;
    }
  }

  private static void deleteOrLater(Path path) {
    try {
      Files.deleteIfExists(path);
    } catch (IOException e) {
      path.toFile().deleteOnExit();
    }
  }
}
