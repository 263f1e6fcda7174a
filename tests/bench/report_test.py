"""The parts of script/bench that measure nothing."""

import sys
import unittest
import xml.etree.ElementTree
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "bench/report"))

import burst_log  # noqa: E402
import charts  # noqa: E402
import intervals  # noqa: E402
import measure  # noqa: E402
import page  # noqa: E402
import summary  # noqa: E402


def accuracy_of(errors_by_interval):
    return [
        {"duty": duty, "method": "kestrelcore", "interval": interval, "spread": 1, "errors": errors}
        for duty in (100, 37)
        for interval, errors in errors_by_interval.items()
    ]


def measured_with(ratios, accuracy_ratio):
    """Times and errors whose ratios are these parts of their goals; of a figure not in `ratios`, all of it."""
    times = {
        figure: {"kestrelcore": [ratios.get(figure, 1) * most], reference: [1]}
        for figure, reference, most in summary.GOALS
    }
    duty, interval, reference, most = summary.ACCURACY_GOAL
    errors = {"kestrelcore": accuracy_ratio * most, reference: 1}
    accuracy = [
        {"duty": duty, "method": method, "interval": interval, "spread": 10, "errors": [error]}
        for method, error in errors.items()
    ]
    return {"times": times, "accuracy": accuracy}


class SummaryTest(unittest.TestCase):
    def test_numbers_have_three_significant_digits_and_no_exponent(self):
        values = (0, 0.012345, 0.999, 9.996, 12.345, 1349.6, 1234567)
        texts = ["0", "0.0123", "0.999", "10.0", "12.3", "1,350", "1,230,000"]
        self.assertEqual([summary.number(value) for value in values], texts)

    def test_own_ways_come_before_the_others_which_are_in_order_of_their_medians(self):
        ways = {"slow": [9], "limit": [1], "quick": [2, 100, 3], "kestrelcore": [50]}
        self.assertEqual(summary.ways_in_order(ways), ["kestrelcore", "limit", "quick", "slow"])

    def test_a_ratio_to_a_peer_that_is_not_installed_is_none(self):
        self.assertIsNone(summary.ratio({"kestrelcore": [1]}, "kestrelcore", "libgtop"))

    def test_the_shortest_interval_is_not_below_one_that_fails(self):
        accuracy = accuracy_of({5: [1], 10: [-9, 9], 50: [2, -2], 100: [0.5]})
        self.assertEqual(summary.shortest_interval(accuracy, 5), 50)
        self.assertEqual(summary.shortest_interval(accuracy, 1), 100)
        self.assertIsNone(summary.shortest_interval(accuracy, 0.1))

    def test_a_goal_is_missed_above_its_ratio(self):
        self.assertEqual(summary.missed_goals(measured_with({}, 1)), set())
        self.assertEqual(summary.missed_goals(measured_with({"SurveyCpu": 1.01}, 1)), {"SurveyCpu"})
        self.assertEqual(summary.missed_goals(measured_with({}, 1.01)), {"accuracy"})

    def test_a_goal_that_was_not_measured_is_not_missed(self):
        data = measured_with({"GetCpuUsage, own process": 2}, 1)
        del data["times"]["GetCpuUsage, own process"]["raw stat"]
        self.assertEqual(summary.missed_goals(data), set())

    def test_files_of_memory_groups_are_counted(self):
        files = ["/proc/meminfo", "/sys/fs/cgroup/a/memory.max", "/sys/fs/cgroup/a/b/memory.max"]
        self.assertEqual(summary.file_list(files), "`/proc/meminfo`, `memory.max` of 2 memory groups")

    def test_the_overhead_per_device_leaves_out_the_hip_calls(self):
        devices = {"4": {"SurveyGpus": {"kestrelcore": [10], "limit": [2]}}}
        self.assertEqual(summary.overhead_per_device(devices, "SurveyGpus", 4), 2)


class BurstLogTest(unittest.TestCase):
    LOG = burst_log.parse("1000 100\n1040 140\n1100 140\n")  # busy until 1040, then asleep

    def test_the_use_between_two_edges_is_in_proportion(self):
        self.assertEqual(burst_log.percent_used(self.LOG, 1010, 1030), 100)
        self.assertEqual(burst_log.percent_used(self.LOG, 1020, 1060), 50)
        self.assertEqual(burst_log.percent_used(self.LOG, 1050, 1090), 0)

    def test_a_moment_outside_the_log_is_an_error(self):
        for start, end in ((999, 1050), (1050, 1101)):
            with self.assertRaises(ValueError):
                burst_log.percent_used(self.LOG, start, end)


class IntervalsTest(unittest.TestCase):
    PLAN = intervals.plan(intervals.OFF_STEP, ("a", "b"), 1)

    def lengths(self, interval):
        return {length for _, at, _, length in self.PLAN if at == interval}

    def test_every_method_is_measured_over_the_same_lengths_after_the_same_pauses(self):
        of_method = {name: [rest for method, *rest in self.PLAN if method == name] for name in ("a", "b")}
        self.assertEqual(sorted(of_method["a"]), sorted(of_method["b"]))

    def test_every_run_has_the_same_plan(self):
        self.assertEqual(self.PLAN, intervals.plan(intervals.OFF_STEP, ("a", "b"), 1))

    def test_lengths_stay_within_their_range(self):
        for interval, (spread, _) in intervals.OFF_STEP.items():
            for length in self.lengths(interval):
                self.assertLessEqual(abs(length - interval), spread)

    def test_lengths_meet_every_part_of_a_step_of_10_ms_and_of_4_ms(self):
        for interval in (10, 20, 50, 100):
            for step in (10, 4):
                parts = {length % step for length in self.lengths(interval)}
                self.assertEqual(parts, set(range(step)), f"{interval} ms in steps of {step} ms")

    def test_pauses_last_up_to_the_longest_tick(self):
        pauses = [pause for _, _, pause, _ in self.PLAN]
        self.assertLess(min(pauses), intervals.LONGEST_TICK / 10)
        self.assertGreater(max(pauses), intervals.LONGEST_TICK * 9 / 10)
        self.assertLessEqual(max(pauses), intervals.LONGEST_TICK)

    def test_lengths_in_step_are_the_intervals_themselves(self):
        planned = intervals.plan(intervals.IN_STEP, ("a",), 1)
        self.assertTrue(all(length == interval for _, interval, _, length in planned))

    def test_a_small_scale_leaves_one_measurement_of_each_interval(self):
        planned = intervals.plan(intervals.OFF_STEP, ("a",), 0.001)
        self.assertEqual(sorted(interval for _, interval, _, _ in planned), sorted(intervals.OFF_STEP))


class MeasureTest(unittest.TestCase):
    def test_counts_are_by_figure_and_way(self):
        counts = measure.parse_counts("SurveyCpu/limit\t1\t0\nSurveyCpu/hwloc\t9\t3\t/a\t/b\n")
        hwloc = {"system_calls": 9, "allocations": 3, "files": ["/a", "/b"]}
        self.assertEqual(counts["SurveyCpu"]["hwloc"], hwloc)
        self.assertEqual(counts["SurveyCpu"]["limit"]["files"], [])

    def test_times_are_of_the_wall_only_where_the_name_says_so(self):
        def entry(name, **more):
            return {"name": name, "run_type": "iteration", "cpu_time": 1, "real_time": 2} | more

        failed = entry("start/lazy/real_time", error_occurred=True)
        aggregate = entry("SurveyCpu/limit", run_type="aggregate")
        benchmarks = [entry("SurveyCpu/limit"), entry("start/linked/real_time"), failed, aggregate]
        found = measure.times({"benchmarks": benchmarks})
        self.assertEqual(found, {"SurveyCpu": {"limit": [1]}, "start": {"linked": [2]}})


class PageTest(unittest.TestCase):
    def test_a_goal_is_met_at_its_very_ratio(self):
        self.assertEqual(page.verdict(1.15, 1.15), "1.15 | met |")
        self.assertEqual(page.verdict(1.16, 1.15), "1.16 | **not met** |")
        self.assertEqual(page.verdict(None, 1.15), "not measured |  |")

    def test_only_the_reasons_of_missed_goals_are_on_the_page(self):
        text = page.reasons({"willFailToAllocate", "accuracy"})
        self.assertIn("`getAvailableRAM` and `willFailToAllocate` also", text)
        self.assertIn("250 Hz", text)
        self.assertNotIn("libgtop", text)

    def test_nothing_is_explained_if_no_goal_is_missed(self):
        self.assertEqual(page.reasons(set()), "")

    def test_every_reason_is_of_a_goal(self):
        goals = {figure for figure, _, _ in summary.GOALS} | {"accuracy"}
        for figures, _ in page.REASONS:
            self.assertLessEqual(set(figures), goals)

    def test_the_goal_of_the_accuracy_is_met_or_not_by_the_measured_ratio(self):
        last = page.goals_table(measured_with({}, 0.8)).splitlines()[-1]
        self.assertTrue(last.endswith("over about 50 ms | 0.5 times psutil | 0.400 | met |"), last)
        last = page.goals_table(measured_with({}, 1.5)).splitlines()[-1]
        self.assertTrue(last.endswith("| 0.750 | **not met** |"), last)

    def test_the_table_of_the_accuracy_names_ranges_and_methods_in_the_order_of_the_chart(self):
        def entry(duty, method, interval, spread, *errors):
            keys = ("duty", "method", "interval", "spread", "errors")
            return dict(zip(keys, (duty, method, interval, spread, errors)))

        accuracy = [
            entry(100, "psutil", 50, 10, 8, -4),
            entry(100, "kestrelcore", 50, 10, -1, 3),
            entry(100, "kestrelcore", 5, 0, 9),
            entry(100, "psutil", 5, 0, -90),
            entry(37, "raw stat", 50, 10, 7),
        ]
        self.assertEqual(
            page.accuracy_table(accuracy, 100).splitlines(),
            [
                "| interval | kestrelcore | psutil |",
                "|---|---|---|",
                "| 5 ms | 9.00 (9.00) | 90.0 (90.0) |",
                "| 40 to 60 ms | 2.00 (3.00) | 6.00 (8.00) |",
            ],
        )

    def test_the_advice_names_the_shortest_interval_for_each_error(self):
        advice = page.advice(accuracy_of({10: [20], 20: [8], 100: [5]}))
        self.assertIn("within 10 points from about 20 ms on, within 5 points from about 100 ms on.", advice)
        self.assertNotIn("within 2", advice)

    def test_no_interval_is_advised_if_every_mean_error_is_large(self):
        self.assertIn("No interval", page.advice(accuracy_of({10: [20], 100: [11]})))

    def test_a_start_without_an_installed_runtime_is_left_out(self):
        programs = {"a C++ program": [1000], "linked": [3000]}
        self.assertEqual(
            page.start_table(programs).splitlines(),
            ["| a C++ program | 1.00 | 1.00 to 1.00 |  |", "| linked | 3.00 | 3.00 to 3.00 | 2.00 |"],
        )

    def test_charts_are_well_formed(self):
        bars = charts.bars("a < b", "ms", [("one", [("x", "own", 0.5), ("y", "peer", 70)])])
        lines = charts.lines("t", "x", "y", [("a & b", "own", [(1, 2), (1024, 300)])])
        for chart in (bars, lines):
            self.assertIn("prefers-color-scheme: dark", chart)
            xml.etree.ElementTree.fromstring(chart)


if __name__ == "__main__":
    unittest.main()
