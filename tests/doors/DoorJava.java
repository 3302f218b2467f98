// The doors test's runner for the Java package: answers every case of a
// corpus (see corpus.py) on one engine, reloading the documents of each
// group, and writes "ID<TAB>ANSWER" lines in UTF-8. Requests go over as Java
// strings read from their files as UTF-8.
//
//   java -cp tov.jar:tov_door_java.jar DoorJava CORPUS ANSWERS

import java.io.BufferedWriter;
import java.io.IOException;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import org.tov.Answer;
import org.tov.Engine;

public final class DoorJava {
    private DoorJava() {}

    public static void main(String[] arguments) throws IOException {
        if (arguments.length != 2) {
            System.err.println("usage: DoorJava CORPUS ANSWERS");
            System.exit(2);
        }
        Path corpus = Path.of(arguments[0]);
        try (Engine engine = new Engine();
                BufferedWriter out = Files.newBufferedWriter(Path.of(arguments[1]),
                        StandardCharsets.UTF_8)) {
            for (String line : Files.readAllLines(corpus.resolve("manifest.tsv"),
                    StandardCharsets.UTF_8)) {
                String[] fields = line.split("\t", -1);
                if (fields.length == 5 && fields[0].equals("group")) {
                    write(out, fields[1] + "/datamodel",
                            engine.loadDatamodelFile(corpus.resolve(fields[3])));
                    write(out, fields[1] + "/rules", engine.loadRulesFile(corpus.resolve(fields[4])));
                } else if (fields.length == 5 && fields[0].equals("case")) {
                    String request = Files.readString(corpus.resolve(fields[3]),
                            StandardCharsets.UTF_8);
                    write(out, fields[1], engine.evaluate(fields[2], request));
                }
            }
        }
    }

    private static void write(BufferedWriter out, String id, Answer answer) throws IOException {
        out.write(id + "\t" + answer.raw() + "\n");
    }
}
