! A Fortran client, compiled with 64-bit default integers (gfortran -fdefault-integer-8): a sort with a
! character argument, a function routine with IFAIL, and a report printed under IFAIL = -1.
program client
  implicit none
  double precision :: rv(6), s15adf, x02ajf
  integer :: ifail
  external :: s15adf, x02ajf

  rv = [4.0d0, -2.0d0, 7.5d0, 0.0d0, 1.0d0, -3.25d0]
  ifail = 0
  call m01caf(rv, 2, 5, 'A', ifail)
  print '(a, 6f8.3)', ' rv(2:5) sorted ascending:', rv

  ifail = 0
  print '(a, es24.16)', ' erfc(0.5) =', s15adf(0.5d0, ifail)
  print '(a, es12.4)', ' x02ajf =', x02ajf()

  ! The library prints through the C runtime; flush Fortran's own buffer first to keep the lines in order.
  flush(6)
  ifail = -1
  call m01caf(rv, 1, 6, 'X', ifail)
  print '(a, i0)', ' m01caf with ORDER = ''X'' returned IFAIL = ', ifail
end program client
