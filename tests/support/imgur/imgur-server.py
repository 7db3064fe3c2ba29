#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
# SPDX-FileCopyrightText: 2026 The Vantrope developers
"""A local server that speaks the part of Imgur's API the program uses: credits, image upload (base64 in
multipart form data), albums and deletion, with the "Authorization: Client-ID" header checked. Tests steer
it through POST /__control (JSON: credits, fail: "rate-limit" | "malformed" | "", client_id) and read what
it received from GET /__state. Usage: imgur-server.py CLIENT_ID. Prints "ready PORT"."""
import base64
import cgi
import hashlib
import http.server
import io
import json
import secrets
import socketserver
import sys
import threading

LOCK = threading.Lock()
STATE = {
    'client_id': sys.argv[1],
    'credits': {'ClientLimit': 12500, 'ClientRemaining': 12000, 'UserLimit': 500, 'UserRemaining': 400,
                'UserReset': 1767225600},
    'fail': '',
    'images': {},   # delete hash -> {id, sha256, size}
    'albums': {},   # delete hash -> {id, images: [image delete hashes]}
    'deleted': [],
    'requests': [],
}


class Handler(http.server.BaseHTTPRequestHandler):
    protocol_version = 'HTTP/1.1'

    def log_message(self, *args):
        pass

    def reply(self, status, payload, raw=None):
        body = raw if raw is not None else json.dumps(payload).encode()
        self.send_response(status)
        self.send_header('Content-Type', 'application/json')
        self.send_header('Content-Length', str(len(body)))
        self.end_headers()
        self.wfile.write(body)

    def body(self):
        length = int(self.headers.get('Content-Length') or 0)
        return self.rfile.read(length) if length else b''

    def authorized(self):
        return self.headers.get('Authorization') == 'Client-ID ' + STATE['client_id']

    def form(self, data):
        environ = {'REQUEST_METHOD': 'POST', 'CONTENT_TYPE': self.headers['Content-Type'],
                   'CONTENT_LENGTH': str(len(data))}
        return cgi.FieldStorage(fp=io.BytesIO(data), environ=environ, keep_blank_values=True)

    def failure_reply(self):
        if STATE['fail'] == 'rate-limit':
            self.reply(429, {'data': {'error': 'Too Many Requests: the rate limit was exceeded', 'request': self.path,
                                      'method': self.command}, 'success': False, 'status': 429})
            return True
        if STATE['fail'] == 'malformed':
            self.reply(200, None, raw=b'<html>maintenance</html>')
            return True
        return False

    def do_GET(self):
        with LOCK:
            STATE['requests'].append('GET ' + self.path)
            if self.path == '/__state':
                self.reply(200, {k: v for k, v in STATE.items() if k != 'client_id'})
                return
            if not self.authorized():
                self.reply(403, {'data': {'error': 'Invalid client_id', 'method': 'GET'}, 'success': False,
                                 'status': 403})
                return
            if self.path == '/3/credits':
                if STATE['fail'] == 'malformed':
                    self.reply(200, None, raw=b'{"data": ')
                    return
                self.reply(200, {'data': STATE['credits'], 'success': True, 'status': 200})
                return
            self.reply(404, {'data': {'error': 'not found'}, 'success': False, 'status': 404})

    def do_POST(self):
        data = self.body()
        with LOCK:
            STATE['requests'].append('POST ' + self.path)
            if self.path == '/__control':
                STATE.update(json.loads(data))
                self.reply(200, {})
                return
            if not self.authorized():
                self.reply(403, {'data': {'error': 'Invalid client_id'}, 'success': False, 'status': 403})
                return
            if self.failure_reply():
                return
            form = self.form(data)
            if self.path == '/3/image':
                if form.getfirst('type') != 'base64':
                    self.reply(400, {'data': {'error': 'type must be base64'}, 'success': False, 'status': 400})
                    return
                image = base64.b64decode(form.getfirst('image'), validate=True)
                ident, delete = secrets.token_hex(4), secrets.token_hex(8)
                STATE['images'][delete] = {'id': ident, 'sha256': hashlib.sha256(image).hexdigest(),
                                           'size': len(image)}
                self.reply(200, {'data': {'id': ident, 'deletehash': delete, 'link': 'https://i.imgur.test/%s.png' % ident},
                                 'success': True, 'status': 200})
                return
            if self.path == '/3/album':
                hashes = form.getlist('deletehashes[]')
                if form.getfirst('privacy') != 'public' or not all(h in STATE['images'] for h in hashes):
                    self.reply(400, {'data': {'error': 'bad album'}, 'success': False, 'status': 400})
                    return
                ident, delete = secrets.token_hex(4), secrets.token_hex(8)
                STATE['albums'][delete] = {'id': ident, 'images': hashes}
                self.reply(200, {'data': {'id': ident, 'deletehash': delete}, 'success': True, 'status': 200})
                return
            self.reply(404, {'data': {'error': 'not found'}, 'success': False, 'status': 404})

    def do_DELETE(self):
        with LOCK:
            STATE['requests'].append('DELETE ' + self.path)
            if not self.authorized():
                self.reply(403, {'data': {'error': 'Invalid client_id'}, 'success': False, 'status': 403})
                return
            kind, _, delete = self.path[len('/3/'):].partition('/')
            table = STATE['images'] if kind == 'image' else STATE['albums'] if kind == 'album' else None
            if table is None or delete not in table:
                self.reply(404, {'data': {'error': 'Unable to find an image with the id'}, 'success': False,
                                 'status': 404})
                return
            del table[delete]
            STATE['deleted'].append(kind + '/' + delete)
            self.reply(200, {'data': True, 'success': True, 'status': 200})


class Server(socketserver.ThreadingMixIn, http.server.HTTPServer):
    daemon_threads = True


server = Server(('127.0.0.1', 0), Handler)
print('ready %d' % server.server_address[1], flush=True)
server.serve_forever()
