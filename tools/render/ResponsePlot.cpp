#include "ResponsePlot.h"

#include "AtomicFile.h"
#include "RenderError.h"

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace velmoran::render
{

namespace
{

// Two curves closer than this everywhere are drawn as one.
constexpr double kSameCurveDb = 0.01;
constexpr double kDeepestAxisDb = -60.0;
constexpr double kHighestAxisDb = 36.0;

// A text inside single quotes for gnuplot, which doubles a single quote within them.
std::string gnuplotString(const std::string& text)
{
    std::string quoted = "'";
    for (char character : text)
    {
        quoted += character == '\'' ? std::string("''") : std::string(1, character);
    }
    return quoted + "'";
}

bool sameCurve(const std::vector<double>& a, const std::vector<double>& b)
{
    if (a.size() != b.size())
    {
        return false;
    }
    for (size_t index = 0; index < a.size(); ++index)
    {
        if (std::fabs(a[index] - b[index]) > kSameCurveDb)
        {
            return false;
        }
    }
    return true;
}

// The y axis: symmetric around 0 dB in steps of 6 dB, deeper where a curve falls far.
void axisRange(const ResponseCurves& curves, double& lowest, double& highest)
{
    double top = 0.0;
    double bottom = 0.0;
    for (const auto* set : {&curves.measuredDb, &curves.designedDb})
    {
        for (const std::vector<double>& curve : *set)
        {
            for (double value : curve)
            {
                top = std::max(top, value);
                bottom = std::min(bottom, value);
            }
        }
    }
    highest = std::min(kHighestAxisDb, std::max(6.0, 6.0 * std::ceil((std::max(top, -bottom) + 1.5) / 6.0)));
    lowest = std::max(kDeepestAxisDb, std::min(-highest, -6.0 * std::ceil((-bottom + 1.5) / 6.0)));
}

bool onPath(const char* program)
{
    const char* path = std::getenv("PATH");
    std::string folders = path ? path : "/usr/bin:/bin";
    size_t start = 0;
    while (start <= folders.size())
    {
        const size_t end = std::min(folders.find(':', start), folders.size());
        const std::string candidate = folders.substr(start, end - start) + "/" + program;
        if (access(candidate.c_str(), X_OK) == 0)
        {
            return true;
        }
        start = end + 1;
    }
    return false;
}

} // namespace

std::string plotScript(const ResponseCurves& curves, const std::string& title, const std::string& pngPath)
{
    double lowest = 0.0;
    double highest = 0.0;
    axisRange(curves, lowest, highest);
    const bool hasDesign = curves.designedDb[0].size() == curves.frequenciesHz.size();
    const bool oneMeasured = sameCurve(curves.measuredDb[0], curves.measuredDb[1]);
    const bool oneDesigned = !hasDesign || sameCurve(curves.designedDb[0], curves.designedDb[1]);

    std::string script;
    script += "set terminal pngcairo size 1200,720 noenhanced font 'DejaVu Sans,13' linewidth 1\n";
    script += "set output " + gnuplotString(pngPath) + "\n";
    script += "set title " + gnuplotString(title) + " font 'DejaVu Sans,15'\n";
    script += "set logscale x 10\nset xrange [20:20000]\n";
    script += "set yrange [" + std::to_string(lowest) + ":" + std::to_string(highest) + "]\n";
    script += "set xtics ('20' 20, '50' 50, '100' 100, '200' 200, '500' 500, '1k' 1000, '2k' 2000, "
              "'5k' 5000, '10k' 10000, '20k' 20000)\nset mxtics 10\n";
    script += "set ytics " +
              std::string(highest - lowest > 48.0 ? "12" : (highest - lowest > 24.0 ? "6" : "3")) + "\n";
    script += "set grid xtics mxtics ytics lt 1 lc rgb '#c8c8c8' lw 1, lt 1 lc rgb '#e8e8e8' lw 1\n";
    script += "set xzeroaxis lt 1 lc rgb '#808080' lw 1.5\n";
    script += "set xlabel 'Frequency (Hz)'\nset ylabel 'Gain (dB)'\n";
    script += "set key below horizontal samplen 4 spacing 1.3 width 2\n";
    script += "set border lc rgb '#444444'\n";
    if (!curves.designNote.empty())
    {
        script += "set label 1 " + gnuplotString(curves.designNote) + " at graph 0.02, graph 0.05\n";
    }
    script += "$response << EOD\n";
    for (size_t point = 0; point < curves.frequenciesHz.size(); ++point)
    {
        char line[160];
        std::snprintf(line, sizeof(line), "%.4f %.4f %.4f %.4f %.4f\n", curves.frequenciesHz[point],
                      curves.measuredDb[0][point], curves.measuredDb[1][point],
                      hasDesign ? curves.designedDb[0][point] : 0.0,
                      hasDesign ? curves.designedDb[1][point] : 0.0);
        script += line;
    }
    script += "EOD\n";

    // The designed curve wide and light underneath, the measured one thin and dark on top, so
    // that where they agree the measured line runs inside the designed band.
    std::vector<std::string> plots;
    if (hasDesign)
    {
        plots.push_back("$response using 1:4 with lines lw 9 lc rgb '#ffc24d' title '" +
                        std::string(oneDesigned ? "designed" : "designed, left") + "'");
        if (!oneDesigned)
        {
            plots.push_back("$response using 1:5 with lines lw 9 lc rgb '#9fd39f' title 'designed, right'");
        }
    }
    plots.push_back("$response using 1:2 with lines lw 2.5 lc rgb '#1c3d7a' title '" +
                    std::string(oneMeasured ? "measured through the plug-in" : "measured, left") + "'");
    if (!oneMeasured)
    {
        plots.push_back(
            "$response using 1:3 with lines lw 2.5 dt 2 lc rgb '#1e7a3c' title 'measured, right'");
    }
    script += "plot ";
    for (size_t index = 0; index < plots.size(); ++index)
    {
        script += (index ? ", \\\n     " : "") + plots[index];
    }
    script += "\nunset output\n";
    return script;
}

void writeResponsePlot(const ResponseCurves& curves, const std::string& title, const std::string& pngPath)
{
    if (!onPath("gnuplot"))
    {
        throw RenderError("cannot draw '" + pngPath +
                          "': gnuplot is not installed (Debian package gnuplot-nox, see scripts/setup.sh)");
    }
    AtomicFile file(pngPath);
    FILE* gnuplot = popen("gnuplot", "w");
    if (!gnuplot)
    {
        throw RenderError("cannot draw '" + pngPath + "': gnuplot did not start");
    }
    const std::string script = plotScript(curves, title, file.temporaryPath());
    const bool written = std::fwrite(script.data(), 1, script.size(), gnuplot) == script.size();
    const int status = pclose(gnuplot);
    struct stat result = {};
    if (!written || status != 0 || stat(file.temporaryPath().c_str(), &result) != 0 || result.st_size == 0)
    {
        throw RenderError("cannot draw '" + pngPath + "': gnuplot failed (exit status " +
                          std::to_string(WIFEXITED(status) ? WEXITSTATUS(status) : status) + ")");
    }
    file.commit();
}

} // namespace velmoran::render
