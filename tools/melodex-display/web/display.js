// The screen page: shows the state of one screen of the display server and
// follows its changes over the WebSocket. The server hands the page the
// state it had when the page was served, so the picture is right at once.
"use strict";
(function () {
  const initial = window.MELODEX_INITIAL;
  const screen = initial.screen;
  const token = new URLSearchParams(location.search).get("token") || "";
  const modes = ["fill", "fit", "stretch", "centre"];
  let shownKey = null;   // what is on screen now, to skip states that change nothing visible
  let renderQueue = Promise.resolve();
  let socket = null;
  let nextId = 1;
  let renderedSeq = 0;

  function imageUrl(url) {
    return token ? url + "?token=" + encodeURIComponent(token) : url;
  }

  // The parts of a screen's state that show; viewers and shown_seq do not.
  function visibleKey(state) {
    const layer = (l) => [l.url, l.mode];
    return JSON.stringify([layer(state.background), layer(state.foreground), state.blank, state.stage]);
  }

  function loadImage(url) {
    return new Promise((resolve) => {
      const img = new Image();
      img.onload = () => (img.decode ? img.decode().catch(() => {}) : Promise.resolve()).then(() => resolve(img));
      img.onerror = () => resolve(img);
      img.src = imageUrl(url);
    });
  }

  // Shows one layer: a new image fades in over the old one (or cuts), an
  // empty url fades the old one out.
  async function showLayer(element, layer, immediate) {
    const current = element.lastElementChild;
    const mode = modes[layer.mode] || "fit";
    const fade = !immediate && layer.transition && layer.transition.type === "fade" ? layer.transition.duration_ms : 0;
    if (current && current.dataset.url === layer.url) {
      current.className = mode;
      return;
    }
    let img = null;
    if (layer.url) {
      img = await loadImage(layer.url);
      img.className = mode;
      img.dataset.url = layer.url;
      img.alt = "";
      img.style.opacity = fade ? "0" : "1";
      img.style.transition = "opacity " + fade + "ms linear";
      element.appendChild(img);
    }
    const old = Array.from(element.children).filter((child) => child !== img);
    if (fade) {
      void element.offsetWidth;  // start the transition from opacity 0
      if (img) img.style.opacity = "1";
      for (const o of old) { o.style.transition = "opacity " + fade + "ms linear"; o.style.opacity = "0"; }
      await new Promise((resolve) => setTimeout(resolve, fade));
    }
    for (const o of old) o.remove();
  }

  // One line of text with each chord over the character it belongs to.
  function lineElement(line) {
    const div = document.createElement("div");
    div.className = "line";
    const chars = Array.from(line.text || "");
    const chords = (line.chords || []).slice().sort((a, b) => a.offset - b.offset);
    if (!chords.length) {
      div.textContent = chars.length ? line.text : "\u00a0";
      return div;
    }
    const cuts = [0].concat(chords.map((c) => Math.min(c.offset, chars.length)));
    for (let i = 0; i < cuts.length; i++) {
      const end = i + 1 < cuts.length ? cuts[i + 1] : chars.length;
      const chord = i > 0 ? chords[i - 1].name : "";
      const words = chars.slice(cuts[i], end).join("");
      if (i === 0 && !words) continue;
      const seg = document.createElement("span");
      seg.className = "seg";
      const c = document.createElement("span");
      c.className = "chord";
      c.textContent = chord ? chord + " " : "\u00a0";
      const w = document.createElement("span");
      w.className = "words";
      w.textContent = words || "\u00a0";
      seg.append(c, w);
      div.appendChild(seg);
    }
    return div;
  }

  // A long line wraps between its chords; a long section is made smaller
  // until it fits its box, so that the singer sees all of it, not a cut.
  function showText(element, lines) {
    element.replaceChildren(...(lines || []).map(lineElement));
    element.style.fontSize = "";
    let size = parseFloat(getComputedStyle(element).fontSize);
    while (element.scrollHeight > element.clientHeight + 1 && size > 8) {
      size *= 0.9;
      element.style.fontSize = size + "px";
    }
  }

  function showStage(stage) {
    const box = document.getElementById("stage");
    box.hidden = !stage;
    if (!stage) return;
    document.getElementById("stage-title").textContent = stage.title || "";
    const facts = [];
    if (stage.key) facts.push("Key " + stage.key);
    if (stage.capo) facts.push("Capo " + stage.capo);
    if (stage.transpose) facts.push("Transpose " + (stage.transpose > 0 ? "+" : "") + stage.transpose);
    if (stage.tempo) facts.push(stage.tempo + " bpm");
    document.getElementById("stage-facts").textContent = facts.join("  ·  ");
    document.getElementById("stage-section").textContent = stage.section || "";
    showText(document.getElementById("stage-current"), stage.current);
    showText(document.getElementById("stage-next"), stage.next);
    document.getElementById("stage-next-label").hidden = !(stage.next && stage.next.length);
  }

  async function render(seq, state, immediate) {
    const key = visibleKey(state);
    if (key === shownKey) return;
    shownKey = key;
    const blank = document.getElementById("blank");
    blank.className = state.blank === "black" || state.blank === "white" ? state.blank : "";
    document.body.classList.toggle("blank-background", state.blank === "background");
    showStage(state.stage);
    await Promise.all([
      showLayer(document.getElementById("background"), state.background, immediate),
      showLayer(document.getElementById("foreground"), state.foreground, immediate),
    ]);
    // Drawn: two frames later the picture is on the glass.
    await new Promise((resolve) => requestAnimationFrame(() => requestAnimationFrame(resolve)));
    renderedSeq = seq;
    document.body.dataset.shownSeq = String(seq);
    send({ op: "shown", screen: screen, seq: seq });
  }

  function queueRender(seq, state, immediate) {
    renderQueue = renderQueue.then(() => render(seq, state, immediate)).catch(() => {});
  }

  function send(message) {
    if (socket && socket.readyState === WebSocket.OPEN) {
      message.id = nextId++;
      socket.send(JSON.stringify(message));
    }
  }

  function connect() {
    const scheme = location.protocol === "https:" ? "wss://" : "ws://";
    socket = new WebSocket(scheme + location.host + "/ws");
    let statusId = 0;
    socket.onopen = () => {
      document.getElementById("offline").hidden = true;
      send({ op: "hello", versions: [1], client: "melodex-display page", token: token });
      send({ op: "subscribe", screens: [screen], viewer: true });
      statusId = nextId;
      send({ op: "status" });
      // What was drawn before the connection opened is on screen too.
      renderQueue = renderQueue.then(() => {
        if (renderedSeq) send({ op: "shown", screen: screen, seq: renderedSeq });
      });
    };
    socket.onmessage = (event) => {
      let message;
      try { message = JSON.parse(event.data); } catch (e) { return; }
      if (message.event === "state" && message.screen === screen) {
        queueRender(message.seq, message.state, false);
      } else if (message.id === statusId && message.ok) {
        queueRender(message.result.seq, message.result.screens[screen], false);
      }
    };
    socket.onclose = () => {
      document.getElementById("offline").hidden = false;
      setTimeout(connect, 1000);
    };
  }

  function tick() {
    const now = new Date();
    const two = (n) => String(n).padStart(2, "0");
    document.getElementById("stage-clock").textContent = two(now.getHours()) + ":" + two(now.getMinutes());
  }

  tick();
  setInterval(tick, 1000);
  queueRender(initial.seq, initial.state, true);
  connect();
})();
