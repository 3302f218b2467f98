// A host written in Java. It loads the data model and the rules, then
// evaluates each request named on the command line and prints the answer on
// standard output, one line each, exactly as `tov eval` prints it; on standard
// error it tells what the host would do next.
//
//   javac -cp /usr/local/share/java/tov.jar -d classes Evaluate.java
//   java -cp /usr/local/share/java/tov.jar:classes Evaluate RULES DATAMODEL [KIND REQUEST]...
//
// KIND is edit, edit-before-resolution, save, save-before-resolution, link or
// options. Exit status: 0 when both documents loaded, 1 when one did not,
// 2 for bad arguments.

import java.nio.file.Path;
import org.tov.Answer;
import org.tov.Engine;

public final class Evaluate {
    private Evaluate() {}

    public static void main(String[] arguments) {
        if (arguments.length < 2 || arguments.length % 2 != 0) {
            System.err.println("usage: Evaluate RULES DATAMODEL [KIND REQUEST]...");
            System.exit(2);
        }
        System.exit(run(arguments));
    }

    private static int run(String[] arguments) {
        Path rules = Path.of(arguments[0]);
        Path datamodel = Path.of(arguments[1]);
        try (Engine engine = new Engine()) { // logs nowhere; new Engine("console") or a folder
            if (!loaded(engine.loadDatamodelFile(datamodel), datamodel)
                    || !loaded(engine.loadRulesFile(rules), rules)) {
                return 1;
            }
            for (int i = 2; i + 1 < arguments.length; i += 2) {
                Answer answer = engine.evaluateFile(arguments[i], Path.of(arguments[i + 1]));
                System.out.println(answer.raw());
                tellNextStep(arguments[i + 1], answer);
            }
        }
        return 0;
    }

    private static boolean loaded(Answer answer, Path document) {
        if (!answer.succeeded()) {
            System.err.println("Evaluate: " + document + " did not load: " + answer.comment());
        }
        return answer.succeeded();
    }

    private static void tellNextStep(String request, Answer answer) {
        if (answer.succeeded()) {
            System.err.println(request + ": approved"
                    + (answer.triggerInitialization().isEmpty() ? ""
                            : "; initialize " + answer.triggerInitialization())
                    + (answer.selectedVersioningAttributes().isEmpty() ? ""
                            : "; offer " + answer.selectedVersioningAttributes()));
        } else if (!answer.missingSections().isEmpty()) {
            System.err.println(request + ": add " + answer.missingSections()
                    + " and send the request again");
        } else {
            System.err.println(request + ": refused; show the user: " + answer.comment());
        }
    }
}
