package org.tov;

import java.io.IOException;
import java.io.InputStream;
import java.net.URISyntaxException;
import java.net.URL;
import java.nio.file.Files;
import java.nio.file.Path;
import java.security.CodeSource;
import java.util.ArrayList;
import java.util.List;
import java.util.Properties;

/**
 * Finds and loads libtov_jni.so: the file named by the system property
 * {@code tov.jni.library}; otherwise the one an installation put beside
 * libtov.so, found from where this jar lies; otherwise the one beside the jar
 * (the layout of a build tree); otherwise whatever {@code java.library.path}
 * holds.
 */
final class NativeLibrary {
    /** The system property that names the library file and overrides the search. */
    static final String PROPERTY = "tov.jni.library";

    static final String FILE_NAME = "libtov_jni.so";

    /**
     * Written into the jar by the build: the folder of the installed library,
     * relative to the folder of the installed jar.
     */
    private static final String LOCATION_RESOURCE = "jni-location.properties";

    private NativeLibrary() {}

    static void load() {
        String named = System.getProperty(PROPERTY);
        if (named != null && !named.isEmpty()) {
            // Its UnsatisfiedLinkError names the file and the loader's reason.
            System.load(Path.of(named).toAbsolutePath().toString());
            return;
        }
        List<Path> candidates = besideThisJar();
        for (Path candidate : candidates) {
            // A file that is there but does not load is an error worth seeing,
            // so only a missing one moves the search on.
            if (Files.isRegularFile(candidate)) {
                System.load(candidate.toString());
                return;
            }
        }
        try {
            System.loadLibrary("tov_jni");
        } catch (UnsatisfiedLinkError error) {
            UnsatisfiedLinkError told = new UnsatisfiedLinkError("cannot load " + FILE_NAME
                    + ": tried " + candidates + " and java.library.path ("
                    + System.getProperty("java.library.path") + "); name the file with -D"
                    + PROPERTY + "=PATH");
            told.initCause(error);
            throw told;
        }
    }

    /** Where the library may lie relative to the jar (or class folder) of this class. */
    static List<Path> besideThisJar() {
        List<Path> places = new ArrayList<>();
        Path code = locationOfThisCode();
        if (code == null) {
            return places;
        }
        String installed = installedLibraryFolder();
        // A jar linked from elsewhere (as Debian links jars into /usr/share/java)
        // still finds the installation it belongs to.
        for (Path jar : new Path[] {realPath(code), code}) {
            Path folder = Files.isDirectory(jar) ? jar : jar.getParent();
            if (installed != null) {
                addOnce(places, folder.resolve(installed).resolve(FILE_NAME).normalize());
            }
            addOnce(places, folder.resolve(FILE_NAME));
        }
        return places;
    }

    private static void addOnce(List<Path> places, Path place) {
        if (!places.contains(place)) {
            places.add(place);
        }
    }

    private static Path locationOfThisCode() {
        CodeSource source = NativeLibrary.class.getProtectionDomain().getCodeSource();
        URL location = source == null ? null : source.getLocation();
        if (location == null) {
            return null;
        }
        try {
            return Path.of(location.toURI()).toAbsolutePath();
        } catch (URISyntaxException | IllegalArgumentException error) {
            // Not a file of this system (such as a jar inside a jar); InvalidPathException
            // is an IllegalArgumentException.
            return null;
        }
    }

    private static Path realPath(Path path) {
        try {
            return path.toRealPath();
        } catch (IOException error) {
            return path;
        }
    }

    private static String installedLibraryFolder() {
        try (InputStream stream = NativeLibrary.class.getResourceAsStream(LOCATION_RESOURCE)) {
            if (stream == null) {
                return null;
            }
            Properties properties = new Properties();
            properties.load(stream);
            return properties.getProperty("library.folder");
        } catch (IOException error) {
            return null;
        }
    }
}
