#!/usr/bin/env python3
"""The page of `xklink section FILE -o NAME.html` in headless Chromium, per real file: pointing at
a region names its unit, clicking a hole opens its log with its codes and an SPT result, the view
zooms, the water layer switches off. A screenshot of each page is kept beside it.
Usage: section_page_test.py XKLINK REAL_DATA_DIR ARTEFACT_DIR CHROMIUM CHROMEDRIVER"""
import pathlib
import re
import subprocess
import sys
import tempfile

xklink, real, out, chromium, chromedriver = sys.argv[1:6]
if "NOTFOUND" in chromium + chromedriver:
    sys.exit("chromium or chromedriver is missing: run scripts/setup")
from selenium import webdriver  # noqa: E402 (after the check, which names what is missing)
from selenium.webdriver.chrome.service import Service  # noqa: E402
from selenium.webdriver.support.ui import WebDriverWait  # noqa: E402

# File, its holes drawn, the hole clicked, codes of its strata and an SPT result as logged there.
CASES = [("nle-battersea/21-7-10-NLE.ags", "BH01,BH02,BH03,BH04", "BH01",
          ["TOP", "MG", "ALV", "LC", "LMG"], "N=17"),
         ("dlr-city-airport/DLR_City_Airport_Extension.ags", "BH105,BH106,BH107,BH108", "BH107",
          ["102", "301", "430", "804"], "50/95")]
CSS = "css selector"

out = pathlib.Path(out)
out.mkdir(parents=True, exist_ok=True)
profile = tempfile.TemporaryDirectory(prefix="xklink-chromium-")
options = webdriver.ChromeOptions()
options.binary_location = chromium
for flag in ("headless", "no-sandbox", "disable-gpu", "disable-dev-shm-usage", "disable-quic",
             "no-first-run", "disable-background-networking", "disable-component-update",
             "disable-sync", "window-size=1400,900", "user-data-dir=" + profile.name):
    options.add_argument("--" + flag)
driver = webdriver.Chrome(service=Service(chromedriver), options=options)
try:
    for file, holes, hole, codes, spt in CASES:
        page = out / (pathlib.Path(file).stem + ".html")
        subprocess.run([xklink, "section", pathlib.Path(real) / file, "--holes", holes, "-o", page],
                       check=True, stderr=subprocess.DEVNULL)
        # One file: nothing to fetch (the SVG namespace is a name, not an address).
        fetches = re.findall(r"(?:src|href)\s*=|url\(|@import|https?://(?!www\.w3\.org/2000/svg)",
                             page.read_text(encoding="utf-8"))
        assert not fetches, fetches

        driver.get(page.as_uri())
        log = driver.find_element("id", "log")
        assert not log.is_displayed(), "the log is open before any click"
        webdriver.ActionChains(driver).move_to_element(
            driver.find_element(CSS, "g.strata polygon")).perform()
        info = driver.find_element("id", "info").text
        assert info.startswith("Unit: ") and "Code: " in info, info

        index = driver.execute_script(
            "return JSON.parse(document.getElementById('section-data').textContent)"
            ".holes.findIndex((h) => h.name === arguments[0])", hole)
        target = driver.find_element(CSS, f'rect.hole-target[data-hole="{index}"]')
        webdriver.ActionChains(driver).move_to_element(target).click().perform()
        WebDriverWait(driver, 5).until(lambda d: log.is_displayed())
        assert log.find_element("tag name", "h2").text.startswith(hole), log.text
        strata = [td.text for td in log.find_elements(CSS, "table.strata td")]
        assert all(code in strata for code in codes), (codes, strata)
        assert spt in [td.text for td in log.find_elements(CSS, "table.spt td")], log.text

        svg = driver.find_element(CSS, "#sheet svg")
        view = svg.get_dom_attribute("viewBox")
        driver.find_element("id", "zoom-in").click()
        assert svg.get_dom_attribute("viewBox") != view, "the view does not zoom"
        water = driver.find_element(CSS, 'input[data-layer="water"]')
        assert any(g.is_displayed() for g in driver.find_elements(CSS, "g.water")), "no water"
        water.click()
        assert not any(g.is_displayed() for g in driver.find_elements(CSS, "g.water"))
        water.click()
        driver.save_screenshot(str(out / (page.stem + ".png")))
finally:
    driver.quit()
