#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
# SPDX-FileCopyrightText: 2026 The Vantrope developers
"""Checks every request's Signature Version 4 with botocore, Amazon's own signer, and passes the good
ones on to the local S3 server, which does not check signatures itself. A request signed wrongly gets the
error S3 would send. Usage: sigv4-proxy.py UPSTREAM_PORT ACCESS_KEY (the secret comes on standard input).
Prints "ready PORT"."""
import datetime
import hashlib
import http.client
import http.server
import os
import socketserver
import sys
import threading
import urllib.parse

from botocore import auth
from botocore.awsrequest import AWSRequest
from botocore.credentials import Credentials

UPSTREAM = int(sys.argv[1])
ACCESS_KEY = sys.argv[2]
SECRET = sys.stdin.readline().rstrip('\n')
MAX_SKEW = datetime.timedelta(minutes=15)
# Each request's method, target and the status it got, one per line, for tests that check what was sent.
LOG = os.environ.get('VANTROPE_S3_REQUEST_LOG')
LOG_LOCK = threading.Lock()


def log_request(method, target, status):
    if LOG:
        with LOG_LOCK, open(LOG, 'a') as log:
            log.write('%s %s %d\n' % (method, target, status))


def error_document(code, message):
    return ('<?xml version="1.0" encoding="UTF-8"?>\n<Error><Code>%s</Code><Message>%s</Message></Error>'
            % (code, message)).encode()


def parse_amz_date(text):
    return datetime.datetime.strptime(text, '%Y%m%dT%H%M%SZ')


class Handler(http.server.BaseHTTPRequestHandler):
    protocol_version = 'HTTP/1.1'

    def log_message(self, *args):
        pass

    def refuse(self, status, code, message):
        body = error_document(code, message)
        self.send_response(status)
        self.send_header('Content-Type', 'application/xml')
        self.send_header('Content-Length', str(len(body)))
        self.end_headers()
        self.wfile.write(body)

    def verify(self, body):
        """None when the request is signed right, else (status, code, message)."""
        split = urllib.parse.urlsplit(self.path)
        query = urllib.parse.parse_qsl(split.query, keep_blank_values=True)
        url_base = 'http://%s%s' % (self.headers['Host'], split.path)
        now = datetime.datetime.utcnow()
        header = self.headers.get('Authorization')
        if header:
            fields = dict(part.strip().split('=', 1) for part in header[len('AWS4-HMAC-SHA256 '):].split(','))
            key, date, region, service, _ = fields['Credential'].split('/')
            signed = fields['SignedHeaders'].split(';')
            given = fields['Signature']
            amz_date = self.headers.get('x-amz-date', '')
            payload = self.headers.get('x-amz-content-sha256', '')
            if payload != 'UNSIGNED-PAYLOAD' and payload != hashlib.sha256(body).hexdigest():
                return 400, 'XAmzContentSHA256Mismatch', 'The provided x-amz-content-sha256 does not match.'
            headers = {name: self.headers[name] for name in signed}
            request = AWSRequest(method=self.command, url=url_base + ('?' + split.query if split.query else ''),
                                 headers=headers, data=body)
            signer = auth.S3SigV4Auth(Credentials(ACCESS_KEY, SECRET), service, region)
        else:
            values = dict(query)
            if 'X-Amz-Signature' not in values:
                return None
            key, date, region, service, _ = values['X-Amz-Credential'].split('/')
            given = values['X-Amz-Signature']
            amz_date = values['X-Amz-Date']
            expires = int(values['X-Amz-Expires'])
            if now > parse_amz_date(amz_date) + datetime.timedelta(seconds=expires):
                return 403, 'AccessDenied', 'Request has expired'
            rest = [(k, v) for k, v in query if k != 'X-Amz-Signature']
            request = AWSRequest(method=self.command, url=url_base + '?' + urllib.parse.urlencode(rest, quote_via=urllib.parse.quote),
                                 headers={'host': self.headers['Host']})
            signer = auth.S3SigV4QueryAuth(Credentials(ACCESS_KEY, SECRET), service, region, expires=expires)
        if key != ACCESS_KEY:
            return 403, 'InvalidAccessKeyId', 'The AWS Access Key Id you provided does not exist in our records.'
        if abs(now - parse_amz_date(amz_date)) > MAX_SKEW and header:
            return 403, 'RequestTimeTooSkewed', 'The difference between the request time and the current time is too large.'
        request.context['timestamp'] = amz_date
        canonical = signer.canonical_request(request)
        expected = signer.signature(signer.string_to_sign(request, canonical), request)
        if expected != given:
            return 403, 'SignatureDoesNotMatch', 'The request signature we calculated does not match the signature you provided.'
        return None

    def handle_any(self):
        length = int(self.headers.get('Content-Length') or 0)
        body = self.rfile.read(length) if length else b''
        refusal = self.verify(body)
        if refusal:
            log_request(self.command, self.path, refusal[0])
            self.refuse(*refusal)
            return
        # The server behind knows one key pair of its own; what reached it was checked above.
        split = urllib.parse.urlsplit(self.path)
        query = [(k, v) for k, v in urllib.parse.parse_qsl(split.query, keep_blank_values=True)
                 if not k.startswith('X-Amz-')]
        target = split.path + ('?' + urllib.parse.urlencode(query, quote_via=urllib.parse.quote) if query else '')
        headers = {k: v for k, v in self.headers.items()
                   if k.lower() not in ('connection', 'expect', 'authorization', 'x-amz-date',
                                        'x-amz-content-sha256', 'host', 'content-length')}
        forwarded = AWSRequest(method=self.command, url='http://127.0.0.1:%d%s' % (UPSTREAM, target),
                               headers=headers, data=body)
        forwarded.context['payload_signing_enabled'] = False
        auth.S3SigV4Auth(Credentials('S3RVER', 'S3RVER'), 's3', 'us-east-1').add_auth(forwarded)
        upstream = http.client.HTTPConnection('127.0.0.1', UPSTREAM, timeout=120)
        upstream.request(self.command, target, body=body, headers=dict(forwarded.headers.items()))
        reply = upstream.getresponse()
        content = reply.read()
        log_request(self.command, self.path, reply.status)
        self.send_response(reply.status, reply.reason)
        for name, value in reply.getheaders():
            if name.lower() not in ('transfer-encoding', 'connection', 'content-length'):
                self.send_header(name, value)
        self.send_header('Content-Length', str(len(content)))
        self.end_headers()
        if self.command != 'HEAD':
            self.wfile.write(content)
        upstream.close()

    do_GET = do_PUT = do_POST = do_DELETE = do_HEAD = handle_any


class Server(socketserver.ThreadingMixIn, http.server.HTTPServer):
    daemon_threads = True


server = Server(('127.0.0.1', 0), Handler)
print('ready %d' % server.server_address[1], flush=True)
server.serve_forever()
